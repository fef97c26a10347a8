-- From the second version of the tables to the third.

update schema_version set version = 3;

-- Of a table of packs its cells, in their order: names and types, as of the build that packed them.
alter table row_table add column columns text[];

-- What a cell of a pack says. It is written as COPY writes it: of \\, \t, \n and \r alone.
create function read_escaped(cell text) returns text
language plpgsql immutable strict parallel safe as $$
begin
  if strpos(cell, '\\') = 0 then
    return replace(replace(replace(cell, '\t', E'\t'), '\n', E'\n'), '\r', E'\r');
  end if;
  return (select string_agg(read_escaped(part), '\' order by place)
          from string_to_table(cell, '\\') with ordinality p(part, place));
end $$;

-- A search looks at the names of all servers; with their sites it need not look further.
drop index if exists server_severity_name_id_idx;
create index on server (severity, name, id) include (site);

-- Hashes have nothing to compress.
alter table server_state alter column rows set storage external;

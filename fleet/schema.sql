-- What the fleet knows, apart from the rows of recordings, whose tables are made from what modules
-- and parts describe (schema.cpp). `submission` is truth, with the recordings in the store; the rest
-- can be made again from them. These are the first version's tables; what later ones have beside them
-- is in the files after this, which also bring a fleet that is there from one to the next.

create table site (
  id int generated always as identity primary key,
  name text not null unique check (name <> ''));

-- What a site sent on a day (UTC), for its quota.
create table site_day (
  site int not null references site,
  day date not null,
  recordings bigint not null,
  bytes bigint not null,
  primary key (site, day)) with (fillfactor = 50);

-- severity: the verdict on its newest recording, the worst first: 0 critical, 1 warning, 2 unknown,
-- 3 ok; 4 as long as none is parsed. It and `received` are here so that a list of all servers is read
-- off an index.
create table server (
  id int generated always as identity primary key,
  site int not null references site,
  name text not null check (name <> ''),
  severity smallint not null default 4,
  received timestamptz not null default now(),
  unique (site, name));
create index on server (severity, name, id);
create index on server (received);

-- A recording's content, once, however many servers and nights have it. `key` names it in the store.
create table object (
  id bigint generated always as identity primary key,
  key bytea not null unique check (length(key) = 32),
  bytes bigint not null,
  stored timestamptz not null default now());
create index on object (stored);

-- `taken` is by the server's clock; `note` says why it is not: nothing told it, or the clock was
-- ahead, which would leave the server at that recording for years. It is when it came then, and not
-- a time to judge logs by.
create table submission (
  server int not null references server,
  taken timestamptz not null,
  object bigint not null references object,
  taken_offset smallint not null default 0,  -- minutes of the server's clock from UTC
  received timestamptz not null default now(),
  note text,
  primary key (server, taken, object));
create index on submission (object);

-- Builds whose readers differ. Workers of `current` alone write.
create table parser (
  id smallint generated always as identity primary key,
  version text not null unique,
  state text not null check (state in ('current', 'old')),
  added timestamptz not null default now());
create unique index on parser (state) where state = 'current';

-- state: 0 ready, 1 claimed, 2 done, 3 parked. `attempts` are those that the recording ended by
-- itself, `lost` those that ended with their worker.
create table job (
  parser smallint not null references parser,
  object bigint not null references object,
  state smallint not null default 0,
  attempts smallint not null default 0,
  lost smallint not null default 0,
  claim bigint,
  worker text,
  lease timestamptz,
  reason text,
  primary key (parser, object)) partition by list (parser);
create sequence claim;

-- Of every recording, newest or not.
create table result (
  object bigint primary key references object,
  parser smallint not null references parser,
  row_count int not null,
  problems int not null,
  statuses jsonb not null,
  verdict text not null,
  critical int not null,
  warning int not null,
  unknown int not null,
  notice int not null,
  reasons text[] not null,
  hash bytea not null,
  cpu_us int not null,
  finished timestamptz not null default now());
create index on result using brin (finished);

-- Of every recording the drives that are not all well; others were.
create table drive_error (
  object bigint not null references object,
  drive text not null,
  controller text,
  serial text,
  model text,
  firmware text,
  media_errors bigint,
  other_errors bigint,
  predictive_failures bigint,
  smart_alert text,
  primary key (object, drive));
create index on drive_error (serial, object) include (media_errors);

-- Whose rows are in the tables of rows, and a hash of each of them.
create table server_state (
  server int primary key references server,
  object bigint not null references object,
  parser smallint not null references parser,
  rows bytea not null) with (fillfactor = 60);

-- Numbers for the tables of rows, which state refers to.
create table row_table (
  id smallint generated always as identity primary key,
  name text not null unique);

-- Recordings of which nothing is known any more, and which may still be in the store.
create table removal (
  key bytea primary key);

-- Registers a recording that is in the store. Returns stored, or known when this submission was
-- there. The locks keep a worker from ending the job in between.
create function register(site_name text, server_name text, object_key bytea, object_bytes bigint,
                         told timestamptz, told_offset int) returns text
language plpgsql set search_path = fleet as $$
declare
  the_site int;
  the_server int;
  the_object bigint;
  the_parser smallint;
  the_state smallint;
  is_new boolean;
  is_first boolean;
  is_newest boolean;
  the_note text;
  the_time timestamptz := told;
begin
  select id into the_parser from parser where parser.state = 'current';
  select id into the_site from site where name = site_name;
  if the_site is null then
    insert into site (name) values (site_name) on conflict do nothing;
    select id into the_site from site where name = site_name;
  end if;
  -- Whoever registers for this site at the same time waits here, not in the midst.
  insert into site_day as d values (the_site, (now() at time zone 'UTC')::date, 1, object_bytes)
  on conflict (site, day) do update
  set recordings = d.recordings + 1, bytes = d.bytes + object_bytes;
  select id into the_server from server where site = the_site and name = server_name;
  if the_server is null then
    insert into server (site, name) values (the_site, server_name) on conflict do nothing;
    select id into the_server from server where site = the_site and name = server_name;
  end if;
  select id into the_object from object where key = object_key;
  if the_object is null then
    insert into object (key, bytes) values (object_key, object_bytes) on conflict do nothing;
    select id into the_object from object where key = object_key;
  end if;
  insert into job (parser, object) values (the_parser, the_object) on conflict do nothing;
  select state into the_state from job where parser = the_parser and object = the_object for update;
  update server set received = now() where id = the_server;

  if told is null then
    the_note := 'the recording does not tell its time';
  elsif told > now() + interval '1 day' then
    the_note := 'the clock was ahead: ' || to_char(told at time zone 'UTC', 'YYYY-MM-DD HH24:MI:SS');
  end if;
  if the_note is not null then
    the_time := now();
    is_new := not exists (select from submission
                          where server = the_server and object = the_object and note = the_note);
  else
    is_new := not exists (select from submission where server = the_server
                          and object = the_object and taken = the_time);
  end if;
  if is_new then
    insert into submission (server, taken, object, taken_offset, note)
    values (the_server, the_time, the_object,
            case when the_note is null then told_offset else 0 end, the_note);
  end if;
  if the_state = 3 then
    -- It was parked, perhaps for its file, which is there again.
    update job set state = 0, attempts = 0, lost = 0, reason = null
    where parser = the_parser and object = the_object;
  elsif the_state = 2 and is_new then
    -- Parsed for another server or night: rows, or the time that it is judged by, are others now.
    select min(taken) = the_time and the_note is null into is_first from submission
    where object = the_object and note is null;
    select object = the_object into is_newest from submission join object o on o.id = object
    where server = the_server order by taken desc, o.key desc limit 1;
    if is_first or is_newest and not exists (
        select from server_state where server = the_server and object = the_object) then
      update job set state = 0 where parser = the_parser and object = the_object;
    end if;
  end if;
  return case when is_new then 'stored' else 'known' end;
end $$;

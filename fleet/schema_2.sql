-- From the first version of the tables to the second.

create table schema_version (version int not null);
insert into schema_version values (2);

-- Of each of a build's readers a digest of their sources. Builds in which all are the same make the
-- same rows.
alter table parser add column readers jsonb not null default '{}';

-- Drives that had fewer media errors in the oldest recording of the 30 days before their server's
-- newest one, of those in which they were not all well. Kept, as to find them reads the facts of a month.
create table drive_growth (
  server int not null references server,
  drive text not null,
  controller text,
  serial text not null,
  model text,
  firmware text,
  media_errors bigint not null,
  media_errors_before bigint not null,
  before timestamptz not null,
  grown bigint not null generated always as (media_errors - media_errors_before) stored,
  primary key (server, drive));
create index on drive_growth (grown desc, server, drive);

-- Another one, in views.sql, has what a question needs beside the servers' names.
drop index if exists part_drives_media_errors;

-- What people ask. The views of parts and findings, with pqhost's names and columns, are made beside
-- these (schema.cpp).

create view verdict_history as
select v.name as server, t.name as site, s.taken, r.verdict, r.critical, r.warning, r.unknown,
       r.notice, r.reasons, s.note, encode(o.key, 'hex') as recording, v.id as server_id
from submission s
join server v on v.id = s.server
left join site t on t.id = v.site
join object o on o.id = s.object
join result r on r.object = s.object;

create view verdict_now as
select v.name as server, t.name as site, s.taken, r.verdict, r.critical, r.warning, r.unknown,
       r.notice, r.reasons, s.note, encode(o.key, 'hex') as recording, v.id as server_id
from server_state e
join server v on v.id = e.server
left join site t on t.id = v.site
join object o on o.id = e.object
join result r on r.object = e.object
join lateral (select taken, note from submission
              where server = e.server and object = e.object order by taken desc limit 1) s on true;

create view media_error_trend as
select v.name as server, t.name as site, s.taken, d.drive, d.controller, d.serial, d.model,
       d.firmware, d.media_errors, d.other_errors, d.predictive_failures, d.smart_alert
from drive_error d
join submission s on s.object = d.object
join server v on v.id = s.server
left join site t on t.id = v.site;

create view servers as
select v.name as server, t.name as site, v.severity,
       (array['critical', 'warning', 'unknown', 'ok'])[v.severity + 1] as verdict, v.received, v.id as server_id
from server v
left join site t on t.id = v.site;

create view silent as
select v.name as server, t.name as site, s.taken, v.received, now() - v.received as silent_for,
       v.id as server_id
from server v
left join site t on t.id = v.site
join lateral (select taken from submission
              where server = v.id order by taken desc limit 1) s on true
where v.received < now() - interval '36 hours';

-- What a question about bad drives asks for is read off this alone, for the server's name.
create index if not exists part_drives_not_well
on part_drives (firmware, media_errors, _server) include (id, serial) where media_errors > 0;
-- A night looks at a server's own ones.
create index if not exists part_drives_of_server on part_drives (_server) where media_errors > 0;

create view growing_drives as
select v.name as server, t.name as site, g.drive, g.controller, g.serial, g.model, g.firmware,
       g.media_errors, g.media_errors_before, g.before, g.grown, v.id as server_id
from drive_growth g
join server v on v.id = g.server
left join site t on t.id = v.site
where g.before > now() - interval '30 days';

-- What drive_growth should have of these servers.
drop function if exists find_growth(int[]);
create function find_growth(servers int[]) returns table (
  server int, drive text, controller text, serial text, model text, firmware text,
  media_errors bigint, media_errors_before bigint, before timestamptz)
language sql stable as $$
select distinct on (e.server, d.id) e.server, d.id, d.controller, d.serial, d.model, d.firmware,
       d.media_errors, f.media_errors, f.taken
from server_state e
join part_drives d on d._server = e.server
cross join lateral (select max(taken) as taken from submission
                    where server = e.server and object = e.object) n
cross join lateral (select x.media_errors, s.taken from submission s
                    join drive_error x on x.object = s.object
                    where s.server = e.server and x.serial = d.serial
                      and s.taken > n.taken - interval '30 days'
                    order by s.taken, x.object limit 1) f
where e.server = any(servers) and d.media_errors > 0 and d.serial <> ''
  and d.media_errors > f.media_errors
$$;

create view parked as
select encode(o.key, 'hex') as recording, j.reason, j.attempts, j.lost, o.bytes, o.stored,
       array(select distinct v.name from submission s join server v on v.id = s.server
             where s.object = j.object order by 1) as servers
from job j
join parser p on p.id = j.parser and p.state = 'current'
join object o on o.id = j.object
where j.state = 3;

create view progress as
select p.version, p.state, count(j.object) as recordings,
       count(*) filter (where j.state = 0) as ready,
       count(*) filter (where j.state = 1) as running,
       count(*) filter (where j.state = 2) as done,
       count(*) filter (where j.state = 3) as parked,
       min(o.stored) filter (where j.state < 2) as oldest_waiting
from parser p
left join job j on j.parser = p.id
left join object o on o.id = j.object
group by p.id;

-- The same of the readers that write, in no time however much is done.
create view queue as
select (select count(*) from job where parser = p.id and state < 2 and state = 0) as ready,
       (select count(*) from job where parser = p.id and state < 2 and state = 1) as running,
       (select count(*) from job where parser = p.id and state = 3) as parked,
       (select count(*) from result where finished > now() - interval '1 minute') as done_last_minute,
       (select o.stored from job j join object o on o.id = j.object
        where j.parser = p.id and j.state < 2 order by j.object limit 1) as oldest_waiting
from parser p
where p.state = 'current';

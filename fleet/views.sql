-- What people ask. The views of parts and findings, with pqhost's names and columns, are made beside
-- these (schema.cpp).

create view verdict_history as
select v.name as server, t.name as site, s.taken, r.verdict, r.critical, r.warning, r.unknown,
       r.notice, r.reasons, s.note, encode(o.key, 'hex') as recording, v.id as server_id
from submission s
join server v on v.id = s.server
join site t on t.id = v.site
join object o on o.id = s.object
join result r on r.object = s.object;

create view verdict_now as
select v.name as server, t.name as site, s.taken, r.verdict, r.critical, r.warning, r.unknown,
       r.notice, r.reasons, s.note, encode(o.key, 'hex') as recording, v.id as server_id
from server_state e
join server v on v.id = e.server
join site t on t.id = v.site
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
join site t on t.id = v.site;

create view servers as
select v.name as server, t.name as site, v.severity,
       (array['critical', 'warning', 'unknown', 'ok'])[v.severity + 1] as verdict, v.received, v.id as server_id
from server v
left join site t on t.id = v.site;

create view silent as
select v.name as server, t.name as site, s.taken, v.received, now() - v.received as silent_for,
       v.id as server_id
from server v
join site t on t.id = v.site
join lateral (select taken from submission
              where server = v.id order by taken desc limit 1) s on true
where v.received < now() - interval '36 hours';

-- Of what came within a month the oldest recording in which the drive was not all well.
create index if not exists part_drives_media_errors on part_drives (firmware, media_errors)
where media_errors > 0;
create view growing_drives as
select v.name as server, t.name as site, d.id as drive, d.controller, d.serial, d.model, d.firmware,
       d.media_errors, f.media_errors as media_errors_before, o.stored as before
from part_drives d
join server v on v.id = d._server
join site t on t.id = v.site
cross join (select id from object where stored > now() - interval '30 days'
            order by stored limit 1) m
join lateral (select e.object, e.media_errors from drive_error e
              where e.serial = d.serial and e.object >= m.id and exists (
                select from submission s where s.object = e.object and s.server = d._server)
              order by e.object limit 1) f on true
join object o on o.id = f.object
where d.media_errors > 0 and d.serial <> '';

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

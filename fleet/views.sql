-- What people ask. The views of parts and findings, with pqhost's names and columns, are made beside
-- these (schema.cpp).

create view verdict_history as
select v.name as server, t.name as site, s.taken, r.verdict, r.critical, r.warning, r.unknown,
       r.notice, r.reasons, s.note, encode(o.key, 'hex') as recording
from submission s
join server v on v.id = s.server
join site t on t.id = v.site
join object o on o.id = s.object
join result r on r.object = s.object;

create view verdict_now as
select v.name as server, t.name as site, s.taken, r.verdict, r.critical, r.warning, r.unknown,
       r.notice, r.reasons, s.note, encode(o.key, 'hex') as recording
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

create view silent as
select v.name as server, t.name as site, s.taken, s.received, now() - s.received as silent_for
from server v
join site t on t.id = v.site
join lateral (select taken, received from submission
              where server = v.id order by received desc limit 1) s on true
where s.received < now() - interval '36 hours';

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

-- What is wrong with a machine, as questions to its parts.
--
-- A block begins with a line "-- @words NAME", "-- @table NAME" or "-- @rule ID" and has one
-- SELECT. Words are the same for every machine; tables are intermediate results, made for each in
-- this order, with an index for each line "-- @index COLUMNS". A rule answers one row for each hit:
--
--   severity   critical, warning, notice (shown, never an alarm) or unknown
--   id         of the part that is not well, a row of the table @part
--   observed   as the tool said it
--   because    ids of the parts that are the cause, with ; between them; NULL: itself
--   text       a sentence for the person who has to act; NULL: made from the others
--
-- Columns after these are called part, area or event. The first two are for hits whose part is in
-- another table than @part, or that belong to another area than @area; event is the id of the log
-- entry that tells of it. A line "-- @column NAME" names the part's column where people see it (of
-- several the first that was read at a place of its own), and
-- "-- @log" marks rules about what was, which weigh less than what is. A text goes on in the next
-- line where that begins with "--" and three blanks.
--
-- setting('NAME') is a setting. recent(TIME) is 1 for a time within recent_days before the
-- collection, or after it; 0 for another, NULL for none. ahead(TIME) is 1 for a time more than a
-- day after the collection, 0 for another, NULL for none.

-- ------------------------------------------------------------------------------------------ words

-- States of IPMI sensors, by event type, sensor type (NULL: any) and offset. "lasts" is 0 for what
-- happens at a moment. (Here and below: without CAST a column has no type, and then SQLite uses no
-- index to compare it with one that has.)
-- @words ipmi_states
-- @index event_type, bit
SELECT CAST(column1 AS INTEGER) AS event_type, CAST(column2 AS INTEGER) AS type,
       CAST(column3 AS INTEGER) AS bit, column4 AS severity, column5 AS meaning, column6 AS lasts
FROM (VALUES
  -- Thresholds
  (0x01, NULL,  0, 'warning',  'below lower non-critical limit', 1),
  (0x01, NULL,  2, 'critical', 'below lower critical limit', 1),
  (0x01, NULL,  4, 'critical', 'below lower non-recoverable limit', 1),
  (0x01, NULL,  7, 'warning',  'above upper non-critical limit', 1),
  (0x01, NULL,  9, 'critical', 'above upper critical limit', 1),
  (0x01, NULL, 11, 'critical', 'above upper non-recoverable limit', 1),
  -- States that sensors of any type have
  (0x04, NULL, 1, 'warning',  'failure predicted', 1),
  (0x05, NULL, 1, 'warning',  'limit exceeded', 1),
  (0x06, NULL, 1, 'warning',  'performance lags', 1),
  (0x07, NULL, 1, 'warning',  'non-critical', 1),
  (0x07, NULL, 2, 'critical', 'critical', 1),
  (0x07, NULL, 3, 'critical', 'non-recoverable', 1),
  (0x07, NULL, 4, 'warning',  'non-critical', 1),
  (0x07, NULL, 5, 'critical', 'critical', 1),
  (0x07, NULL, 6, 'critical', 'non-recoverable', 1),
  (0x0a, NULL, 6, 'warning',  'degraded', 1),
  (0x0a, NULL, 8, 'warning',  'installation error', 1),
  (0x0b, NULL, 1, 'critical', 'redundancy lost', 1),
  (0x0b, NULL, 2, 'warning',  'redundancy degraded', 1),
  (0x0b, NULL, 3, 'critical', 'not redundant, still sufficient', 1),
  (0x0b, NULL, 4, 'critical', 'not redundant, still sufficient', 1),
  (0x0b, NULL, 5, 'critical', 'not redundant, not sufficient', 1),
  (0x0b, NULL, 6, 'warning',  'redundancy degraded', 1),
  (0x0b, NULL, 7, 'warning',  'redundancy degraded', 1),
  -- Physical security
  (0x6f, 0x05, 0, 'warning',  'chassis opened', 1),
  (0x6f, 0x05, 1, 'warning',  'drive bay opened', 1),
  (0x6f, 0x05, 2, 'warning',  'I/O card area opened', 1),
  (0x6f, 0x05, 3, 'warning',  'processor area opened', 1),
  (0x6f, 0x05, 4, 'notice',   'LAN cable unplugged', 1),
  (0x6f, 0x05, 6, 'warning',  'fan area opened', 1),
  -- Processor
  (0x6f, 0x07,  0, 'critical', 'internal error (IERR)', 0),
  (0x6f, 0x07,  1, 'critical', 'thermal trip', 0),
  (0x6f, 0x07,  2, 'critical', 'built-in self-test failed (FRB1)', 0),
  (0x6f, 0x07,  3, 'critical', 'hung in POST (FRB2)', 0),
  (0x6f, 0x07,  4, 'critical', 'did not start (FRB3)', 0),
  (0x6f, 0x07,  5, 'critical', 'configuration error', 1),
  (0x6f, 0x07,  6, 'critical', 'uncorrectable error', 0),
  (0x6f, 0x07,  8, 'critical', 'processor disabled', 1),
  (0x6f, 0x07, 10, 'warning',  'processor throttled', 1),
  (0x6f, 0x07, 11, 'critical', 'machine check exception', 0),
  (0x6f, 0x07, 12, 'warning',  'correctable machine check', 0),
  -- Power supply
  (0x6f, 0x08, 1, 'critical', 'failed', 1),
  (0x6f, 0x08, 2, 'warning',  'failure predicted', 1),
  (0x6f, 0x08, 3, 'critical', 'input lost', 1),
  (0x6f, 0x08, 4, 'critical', 'input lost or out of range', 1),
  (0x6f, 0x08, 5, 'critical', 'input out of range', 1),
  (0x6f, 0x08, 6, 'critical', 'configuration error', 1),
  (0x6f, 0x08, 7, 'notice',   'inactive', 1),
  -- Power unit
  (0x6f, 0x09, 2, 'warning',  '240 VA power down', 0),
  (0x6f, 0x09, 3, 'warning',  'interlock power down', 0),
  (0x6f, 0x09, 4, 'critical', 'AC lost', 1),
  (0x6f, 0x09, 5, 'critical', 'soft power control failed', 1),
  (0x6f, 0x09, 6, 'critical', 'power unit failed', 1),
  (0x6f, 0x09, 7, 'warning',  'failure predicted', 1),
  -- Memory
  (0x6f, 0x0c,  0, 'notice',   'correctable ECC error', 0),
  (0x6f, 0x0c,  1, 'critical', 'uncorrectable ECC error', 0),
  (0x6f, 0x0c,  2, 'critical', 'parity error', 0),
  (0x6f, 0x0c,  3, 'critical', 'scrubbing failed', 0),
  (0x6f, 0x0c,  4, 'critical', 'memory device disabled', 1),
  (0x6f, 0x0c,  5, 'warning',  'limit of correctable ECC errors reached', 0),
  (0x6f, 0x0c,  7, 'critical', 'configuration error', 1),
  (0x6f, 0x0c,  9, 'warning',  'throttled', 1),
  (0x6f, 0x0c, 10, 'critical', 'critically hot', 1),
  -- Drive slot
  (0x6f, 0x0d, 1, 'critical', 'drive fault', 1),
  (0x6f, 0x0d, 2, 'warning',  'drive failure predicted', 1),
  (0x6f, 0x0d, 5, 'critical', 'in a critical array', 1),
  (0x6f, 0x0d, 6, 'critical', 'in a failed array', 1),
  (0x6f, 0x0d, 7, 'notice',   'being rebuilt', 1),
  (0x6f, 0x0d, 8, 'warning',  'rebuild aborted', 1),
  -- System firmware
  (0x6f, 0x0f, 0, 'warning',  'firmware error', 0),
  (0x6f, 0x0f, 1, 'critical', 'firmware hung', 0),
  -- Event log
  (0x6f, 0x10, 0, 'notice',   'correctable memory errors are logged no more', 1),
  (0x6f, 0x10, 3, 'warning',  'nothing is logged any more', 1),
  (0x6f, 0x10, 4, 'warning',  'log full', 1),
  (0x6f, 0x10, 5, 'notice',   'log almost full', 1),
  -- System event
  (0x6f, 0x12, 2, 'critical', 'hardware failure of unknown cause', 0),
  -- Critical interrupt
  (0x6f, 0x13,  0, 'critical', 'NMI from the front panel', 0),
  (0x6f, 0x13,  1, 'critical', 'bus time-out', 0),
  (0x6f, 0x13,  2, 'critical', 'I/O channel check', 0),
  (0x6f, 0x13,  4, 'critical', 'PCI parity error', 0),
  (0x6f, 0x13,  5, 'critical', 'PCI system error', 0),
  (0x6f, 0x13,  7, 'warning',  'correctable bus error', 0),
  (0x6f, 0x13,  8, 'critical', 'uncorrectable bus error', 0),
  (0x6f, 0x13,  9, 'critical', 'fatal NMI', 0),
  (0x6f, 0x13, 10, 'critical', 'fatal bus error', 0),
  (0x6f, 0x13, 11, 'warning',  'bus degraded', 1),
  -- Cable, operating system, slot, watchdog
  (0x6f, 0x1b, 1, 'warning',  'wrong cable', 1),
  (0x6f, 0x20, 0, 'critical', 'operating system stopped while loading', 0),
  (0x6f, 0x20, 1, 'critical', 'operating system stopped', 0),
  (0x6f, 0x21, 0, 'warning',  'slot fault', 1),
  (0x6f, 0x23, 0, 'warning',  'watchdog expired', 0),
  (0x6f, 0x23, 1, 'critical', 'watchdog reset the system', 0),
  (0x6f, 0x23, 2, 'critical', 'watchdog powered the system down', 0),
  (0x6f, 0x23, 3, 'critical', 'watchdog power-cycled the system', 0),
  (0x6f, 0x23, 8, 'warning',  'watchdog interrupt', 0),
  -- Management subsystem
  (0x6f, 0x28, 0, 'warning',  'access to sensors degraded', 1),
  (0x6f, 0x28, 1, 'warning',  'access to the controller degraded', 1),
  (0x6f, 0x28, 2, 'critical', 'management controller off-line', 1),
  (0x6f, 0x28, 3, 'critical', 'management controller not available', 1),
  (0x6f, 0x28, 4, 'warning',  'sensor failed', 1),
  (0x6f, 0x28, 5, 'warning',  'FRU failed', 1),
  -- Battery
  (0x6f, 0x29, 0, 'warning',  'battery low', 1),
  (0x6f, 0x29, 1, 'critical', 'battery failed', 1));

-- ipmiutil's words, in lower case, that have one meaning only; "Faulty", "Absent", "Present" and
-- "Asserted" have several. A type of NULL is any.
-- @words ipmiutil_words
SELECT column1 AS word, CAST(column2 AS INTEGER) AS type, column3 AS severity
FROM (VALUES
  ('chassisintrus', 0x05, 'warning'),
  ('ierr', 0x07, 'critical'), ('thermaltrip', 0x07, 'critical'),
  ('frb1failure', 0x07, 'critical'), ('frb2failure', 0x07, 'critical'),
  ('frb3failure', 0x07, 'critical'), ('configerror', 0x07, 'critical'),
  ('procdisabled', 0x07, 'critical'),
  ('ac_lost', 0x08, 'critical'), ('ps_failed', 0x08, 'critical'), ('config_err', 0x08, 'critical'),
  ('parityerr', 0x0c, 'critical'), ('eccerror', 0x0c, 'warning'),
  ('selfull', 0x10, 'warning'),
  ('bus_error', 0x13, 'critical'), ('bus_fatal', 0x13, 'critical'),
  ('bus_degraded', 0x13, 'warning'), ('fatal_nmi', 0x13, 'critical'),
  ('redunlost', NULL, 'critical'), ('redundegr', NULL, 'warning'),
  ('nonredund_sufficient', NULL, 'critical'), ('nonredund_insufficient', NULL, 'critical'),
  ('non-critical', NULL, 'warning'), ('critical', NULL, 'critical'),
  ('non-recoverable', NULL, 'critical'), ('exceeded', NULL, 'warning'));

-- Words that tell of no trouble, and those of several meanings, of which only the state bits tell
-- which. Any other word is not understood.
-- @words plain_words
SELECT column1 AS word
FROM (VALUES
  ('_'), ('present'), ('procpresent'), ('inserted'), ('enabled'), ('asserted'), ('deasserted'),
  ('redundant'), ('fullyredund'), ('full redundancy'), ('logcleared'), ('working'), ('sleeping'),
  ('off'), ('on'), ('online'), ('good'), ('healthy'), ('unused'), ('faulty'), ('faulty faulty'),
  ('absent,fault'));

-- Status words of sensors with limits, in both listings, in lower case.
-- @words threshold_words
SELECT column1 AS word, column2 AS condition
FROM (VALUES
  ('ok', 'ok'), ('ok*', 'ok'),
  ('', 'absent'), ('ns', 'absent'), ('na', 'absent'), ('absent', 'absent'), ('init', 'absent'),
  ('unknown', 'absent'), ('notavailable', 'absent'), ('disabled', 'absent'),
  ('nc', 'warning'), ('lnc', 'warning'), ('unc', 'warning'), ('warn-lo', 'warning'),
  ('warn-hi', 'warning'),
  ('cr', 'critical'), ('lcr', 'critical'), ('ucr', 'critical'), ('crit-lo', 'critical'),
  ('crit-hi', 'critical'),
  ('nr', 'critical'), ('lnr', 'critical'), ('unr', 'critical'), ('belowcrit', 'critical'),
  ('abovecrit', 'critical'));

-- What people call the sources, and the vendor of those that are about controllers.
-- @words source_names
SELECT column1 AS id, column2 AS called, column3 AS vendor
FROM (VALUES
  ('lsi', 'the MegaRAID controllers', 'LSI'),
  ('microchip', 'the Microchip controllers', 'Microchip'),
  ('intel', 'the Intel RAID', 'Intel'), ('sensors', 'the sensors of the BMC', NULL),
  ('sel', 'the log of the BMC', NULL), ('fru', 'the FRU data', NULL),
  ('power supplies', 'the power supplies', NULL), ('leds', 'the LEDs', NULL),
  ('self-test', 'the self-test of the BMC', NULL),
  ('amt', 'the AMT log', NULL), ('sas2', 'the log of the SAS2 controller', NULL));

-- @words sensor_areas
SELECT CAST(column1 AS INTEGER) AS type, column2 AS area
FROM (VALUES (0x01, 'temperatures'), (0x02, 'voltages'), (0x04, 'cooling'), (0x0a, 'cooling'),
             (0x08, 'power'), (0x09, 'power'), (0x0c, 'memory'));

-- Codes of the first generation's event log that are troubles, or only look like one.
-- @words lsi_codes
-- @index code
SELECT CAST(column1 AS INTEGER) AS code, 'critical' AS severity
FROM (VALUES
  (0x00a), (0x00b), (0x00d), (0x00f), (0x020), (0x032), (0x03c), (0x061), (0x065), (0x066),
  (0x06d), (0x096), (0x0a6), (0x0b2), (0x0b4), (0x0b5), (0x0bb), (0x0bc), (0x0ca), (0x0d3),
  (0x0d8), (0x0ef), (0x0f0), (0x0f1), (0x0fb), (0x0fc), (0x113), (0x128), (0x18b), (0x1c5),
  (0x1c6), (0x1c8), (0x1ca), (0x1cb))
UNION ALL SELECT column1, 'warning'
FROM (VALUES
  (0x033), (0x03d), (0x03e), (0x05f), (0x060), (0x06f), (0x08e), (0x091), (0x0a1), (0x0a2),
  (0x0a8), (0x0ab), (0x0b3), (0x0c3), (0x0c5), (0x0c9), (0x0cb), (0x0ce), (0x0da), (0x0ee),
  (0x0fa), (0x101), (0x111), (0x112), (0x121), (0x143), (0x144), (0x14a), (0x182), (0x188),
  (0x191), (0x1c9))
UNION ALL SELECT column1, 'notice' FROM (VALUES (0x0c4), (0x0e1))
UNION ALL SELECT column1, 'none'
FROM (VALUES (0x068), (0x094), (0x097), (0x098), (0x0db), (0x0ec), (0x12f));

-- Which later event of the same part says that the trouble is over.
-- @words lsi_ends
-- @index ended_by
SELECT CAST(column1 AS INTEGER) AS code, CAST(column2 AS INTEGER) AS ended_by
FROM (VALUES
  (0x033, 0x030), (0x03d, 0x03a), (0x03e, 0x03a), (0x065, 0x063), (0x065, 0x064), (0x066, 0x063),
  (0x066, 0x064), (0x08e, 0x08d), (0x091, 0x095), (0x096, 0x090), (0x096, 0x08f), (0x0a1, 0x08d),
  (0x0a1, 0x090), (0x0a2, 0x0a3), (0x0a2, 0x090), (0x0a6, 0x0a7), (0x0a8, 0x0d0), (0x0ab, 0x0cd),
  (0x0b2, 0x0e9), (0x0b3, 0x0e9), (0x0b4, 0x0e9), (0x0bc, 0x0a7), (0x0c3, 0x0c2), (0x0ce, 0x0cf),
  (0x0d8, 0x0d7), (0x0da, 0x0db), (0x0da, 0x0dc), (0x0fa, 0x0f9), (0x0fb, 0x0f9), (0x0fc, 0x0f9),
  (0x0fc, 0x0fb), (0x121, 0x120), (0x143, 0x146), (0x144, 0x146), (0x182, 0x090), (0x188, 0x189),
  (0x18b, 0x090), (0x191, 0x190));

-- The same of logs without codes, by their texts.
-- @words text_ends
SELECT column1 AS text, column2 AS ended_by
FROM (VALUES
  ('write cache disabled%', 'write cache enabled%'),
  ('%degraded%', '%optimal%'), ('%degraded%', '%resync complete%'));

-- All codes that a rule looks at; "ends" is 1 for those that end trouble.
-- @words lsi_looked_at
-- @index code
SELECT ended_by AS code, 1 AS ends, '*' AS sense FROM lsi_ends
UNION SELECT column1, 0, column2
FROM (VALUES (0x71, '[34]/*'), (0x10b, '*'), (0x10c, '*'))
UNION SELECT code, 0, '*' FROM lsi_codes
WHERE severity <> 'none' AND code NOT IN (SELECT ended_by FROM lsi_ends);

-- ---------------------------------------------------------------------------- what parts amount to

-- "called" is what people call the part; with several controllers it says whose.
-- @table volume_states
-- @index grp
-- @index controller
-- @index id
SELECT v.*,
       'volume ' || coalesce(v.number, v.id) || coalesce(' "' || v.name || '"', '') ||
       coalesce(' (' || CASE WHEN v.level GLOB '[0-9]*' THEN 'RAID ' ELSE '' END || v.level || ')',
                '') ||
       CASE WHEN (SELECT count(*) FROM controllers) > 1 THEN coalesce(' of ' || v.controller, '')
            ELSE '' END AS called,
       CASE WHEN replace(v.level, ' ', '') LIKE 'RAID0%' OR trim(v.level) IN
                 ('0', 'Simple_volume', 'Simple_Volume', 'Volume', 'JBOD') THEN 0
            WHEN v.condition IN ('degraded', 'offline') AND coalesce(v.level, '') NOT LIKE '%6%'
            THEN 0
            ELSE 1 END AS redundant,
       -- whatever becomes of what backs the cache up
       coalesce(v.write_back, v.cache LIKE '%AWB%', 0) AS writes_back
FROM volumes v;

-- What its volumes amount to for each group: a group can have as many volumes as it has drives, and
-- each must not be compared with all of the others. Here and below.
-- @table group_volumes
-- @index grp
SELECT grp, count(*) AS volumes, max(NOT redundant) AS unprotected, min(id) AS id
FROM volume_states WHERE grp IS NOT NULL GROUP BY grp;

-- The first volume of each group that is not whole.
-- @table group_troubles
-- @index grp
SELECT grp, id, min(rowid) AS first FROM volume_states
WHERE grp IS NOT NULL AND condition IN ('degraded', 'partly', 'recovering') GROUP BY grp;

-- @table drive_states
-- @index grp
-- @index controller
SELECT d.*,
       'drive ' || coalesce(d.place, d.id) ||
       CASE WHEN (SELECT count(*) FROM controllers) > 1 THEN coalesce(' of ' || d.controller, '')
            ELSE '' END ||
       coalesce(' (' || nullif(trim(coalesce(d.model, '') || coalesce(', serial ' || d.serial, ''),
                                    ', '), '') || ')', '') AS called,
       coalesce(g.volumes, 0) AS volumes, coalesce(g.unprotected, 0) AS unprotected,
       d.condition IN ('rebuilding', 'copying') OR d.member_state LIKE 'Rebuilding%' AS rebuilds
FROM drives d LEFT JOIN group_volumes g ON g.grp = d.grp;

-- @table group_drives
-- @index grp
SELECT grp, max(coalesce(rebuilds, 0)) AS rebuilds,
       group_concat(CASE WHEN condition IN ('failed', 'missing') THEN id END, ';') AS failed,
       min(CASE WHEN condition IN ('failed', 'missing') THEN id END) AS first_failed
FROM drive_states WHERE grp IS NOT NULL GROUP BY grp;

-- @table group_gaps
-- @index grp
SELECT grp, group_concat(id, ';') AS missing, min(id) AS first_missing FROM missing_drives
WHERE grp IS NOT NULL GROUP BY grp;

-- Why volumes lack drives. The first of a group names all of them, which belong to one finding
-- then; the others name one.
-- @table volume_causes
-- @index id
SELECT v.id, coalesce(d.rebuilds, 0) AS rebuilds,
       CASE v.id WHEN f.id THEN d.failed ELSE d.first_failed END AS failed,
       CASE v.id WHEN f.id THEN m.missing ELSE m.first_missing END AS missing
FROM volume_states v
JOIN (SELECT grp, id, min(rowid) FROM volume_states
      WHERE condition IN ('degraded', 'partly', 'offline') GROUP BY grp) f ON f.grp = v.grp
LEFT JOIN group_drives d ON d.grp = v.grp
LEFT JOIN group_gaps m ON m.grp = v.grp
WHERE v.condition IN ('degraded', 'partly', 'offline');

-- Those that tell no group have one of NULL.
-- @table lost_drives
-- @index controller, grp
SELECT controller, grp, count(*) AS drives, min(id) AS id FROM drive_states
WHERE condition IN ('failed', 'missing') GROUP BY controller, grp;

-- "condition" of a sensor with limits; 'discrete' has state bits, 'word' only ipmiutil's word.
-- @table sensor_states
-- @index id
SELECT s.*, lower(s.status) AS word, coalesce(s.name, s.id) AS called,
       coalesce(a.area, 'sensors') AS area,
       CASE WHEN s.states IS NOT NULL THEN 'discrete' ELSE coalesce(w.condition, 'word') END
       AS condition
FROM sensors s
LEFT JOIN threshold_words w ON w.word = coalesce(lower(s.status), '')
LEFT JOIN sensor_areas a ON a.type = s.type;

-- State bits that are set now and mean trouble. ipmiutil calls a processor present by bit 7 alone;
-- a listing with that word and a lower bit contradicts itself: which is true, nobody knows.
-- @table sensor_bits
SELECT s.id, s.called, s.area, s.type, s.event_type, s.status, i.meaning,
       CASE WHEN s.type = 0x07 AND s.word = 'procpresent' AND i.bit < 7 THEN 'unknown'
            ELSE i.severity END AS severity
FROM sensor_states s
JOIN ipmi_states i ON i.event_type = s.event_type AND (i.type IS NULL OR i.type = s.type)
WHERE s.states IS NOT NULL AND (s.states >> i.bit) & 1 AND i.event_type <> 0x01;

-- What people call a part that a log names; parts that are not there any more have their id only.
-- @table called_parts
-- @index part, id
SELECT 'drives' AS part, id, called FROM drive_states
UNION ALL SELECT 'volumes', id, called FROM volume_states
UNION ALL SELECT 'sensors', id, called FROM sensor_states
UNION ALL SELECT 'cache_backups', id, coalesce('the ' || kind || ' of ' || controller, id)
FROM cache_backups
UNION ALL SELECT 'controllers', id, 'controller ' || id || coalesce(' (' || model || ')', '')
FROM controllers;

-- The fastest link that a kind of drive has on a controller.
-- @table best_links
SELECT controller, device_speed, max(link_speed) AS link_speed FROM drives
WHERE device_speed IS NOT NULL GROUP BY controller, device_speed;

-- Drives that are lost and tell no group. The only one of a controller is that which a volume
-- lacks.
-- @table loose_drives
SELECT controller, CASE WHEN count(*) = 1 THEN min(id) END AS id FROM drives
WHERE grp IS NULL AND condition IN ('failed', 'missing') GROUP BY controller;

-- ---------------------------------------------------------------------------------------- the logs

-- A log can have a hundred thousand entries: they are gone through three times, and only those that
-- a rule looks at are kept.

-- Events before a drive was taken out are those of another drive.
-- @table removed_drives
-- @index part_id
SELECT part_id, max(number) AS number FROM events
WHERE code IN (0x70, 0xf8) AND source = 'LSI' AND part = 'drives' GROUP BY part_id;

-- What is trouble matters for a while, what ends trouble always.
-- @table lsi_events
-- @index part_id, code
SELECT e.id, e.controller, e.number, e.time, e.code, e.level, e.text, e.sense, e.part, e.part_id,
       coalesce(c.called, e.part_id) AS called
FROM events e
LEFT JOIN lsi_looked_at l ON l.code = e.code
LEFT JOIN removed_drives r ON r.part_id = e.part_id AND e.part = 'drives'
LEFT JOIN called_parts c ON c.part = e.part AND c.id = e.part_id
WHERE (l.code IS NOT NULL OR e.level >= 2 OR e.level >= 1 AND e.code IS NULL) AND e.source = 'LSI'
      AND (coalesce(l.sense, '*') = '*' OR e.sense GLOB l.sense OR e.level >= 2)
      AND (l.ends OR recent(e.time))
      AND (r.number IS NULL OR coalesce(e.number > r.number, 1));

-- The last event that ends a trouble, for each part and code.
-- @table lsi_ended
-- @index part_id, code
SELECT e.part_id, n.code, max(e.number) AS number
FROM (SELECT part_id, code, max(number) AS number FROM lsi_events GROUP BY part_id, code) e
JOIN lsi_ends n ON n.ended_by = e.code
GROUP BY e.part_id, n.code;

-- The logs of all but MegaRAID controllers.
-- @table other_events
SELECT * FROM events WHERE source <> 'LSI';

-- Which later entry of the same log says that what one tells of is over: texts, since these logs
-- have no code for it.
-- @table other_ended
-- @index began
SELECT e.id AS began, o.number, o.time, o.text, min(o.number) AS first
FROM other_events e
JOIN text_ends n ON e.text LIKE n.text
JOIN other_events o ON o.source = e.source AND o.part_id = e.part_id AND o.number > e.number
                       AND o.text LIKE n.ended_by
WHERE e.level >= 1 AND e.source IN ('Microchip', 'SAS2') GROUP BY e.id;

-- Entries of the BMC's log with their meaning, if they have one here.
-- @table sel_events
SELECT e.id, e.number, e.time, e.code, e.level, e.kind, e.sensor, e.event_type, e."offset", e.text,
       e.asserted, coalesce(e.part_id, e.kind) AS part_id,
       coalesce(s.called, e.part_id, e.kind) AS called,
       coalesce(s.area, a.area, 'sensors') AS area, s.condition, s.states,
       i.severity, i.meaning, i.lasts
FROM other_events e
LEFT JOIN sensor_states s ON s.id = e.part_id
LEFT JOIN sensor_areas a ON a.type = e.code
LEFT JOIN ipmi_states i ON i.event_type = e.event_type AND i.bit = e."offset"
                           AND (i.type IS NULL OR i.type = e.code)
WHERE e.source = 'SEL';

-- Sources of which something was read, whole or not.
-- @table told_sources
-- @index id
SELECT n.id FROM source_names n JOIN controllers c ON c.vendor = n.vendor
UNION SELECT n.id FROM source_names n JOIN drives d ON d.vendor = n.vendor
UNION SELECT 'sensors' FROM sensors
UNION SELECT lower(source) FROM other_events
UNION SELECT 'power supplies' FROM power_supplies
UNION SELECT 'leds' FROM leds
UNION SELECT 'self-test' FROM self_tests;

-- The last entry that says a state is over. Redundancy that is back ends each loss of it.
-- @table sel_ended
-- @index sensor, event_type
SELECT sensor, code, event_type, CASE event_type WHEN 0x0b THEN -1 ELSE "offset" END AS bit,
       max(number) AS number
FROM sel_events WHERE asserted = 0 AND sensor IS NOT NULL
GROUP BY sensor, code, event_type, bit;

-- ----------------------------------------------------------------------------------------- drives

-- @rule drive.failed
-- @part drives
-- @area drives
-- @column state
-- @why The controller no longer uses this drive.
-- @next Replace it. When several go at once, look at cable, backplane and the enclosure's power
--   before you pull any.
-- @source check_lsi_raid; check_raid (arcconf)
SELECT 'critical', id, state, NULL,
       CASE condition WHEN 'missing' THEN 'Look for ' || called || ': the controller misses it ('
                      ELSE 'Replace ' || called || ': it has failed (' END || state || ')'
FROM drive_states WHERE condition IN ('failed', 'missing');

-- @rule drive.bad
-- @part drives
-- @area drives
-- @column state
-- @why The drive belongs to no array and is marked as not usable, so it cannot stand in for
--   another.
-- @next Take it out; or, once it has been tested, make it usable with storcli /cX/eY/sZ set good.
-- @source Checkmk megaraid
SELECT 'warning', id, state, NULL,
       'Test or replace ' || called || ': it is not usable (' || state || ')'
FROM drive_states WHERE condition IN ('bad', 'unsupported', 'shielded');

-- @rule drive.rebuilding
-- @part drives
-- @area drives
-- @column state
-- @why Its contents are being written anew. Until that is done, the array has less protection, or
--   none.
-- @next Leave all drives of the array where they are, and look again when the rebuild is over.
-- @source check_raid #47
SELECT 'warning', id,
       CASE WHEN condition IN ('rebuilding', 'copying') THEN state ELSE member_state END,
       (SELECT t.id FROM group_troubles t WHERE t.grp = d.grp),
       'Wait until ' || called ||
       ' has been rebuilt, and leave the other drives of its array in place'
FROM drive_states d WHERE rebuilds;

-- @rule drive.predicted
-- @part drives
-- @area drives
-- @column predictive_failures, smart_alert, state
-- @why The drive's own monitoring expects it to fail.
-- @next Replace it; one that belongs to an array, while that is whole. Copy what nothing else
--   holds first.
-- @source check_raid #49; check_lsi_raid
SELECT CASE WHEN unprotected OR condition = 'jbod' THEN 'critical' ELSE 'warning' END, id, told,
       NULL,
       'Replace ' || called || ': ' || told ||
       CASE WHEN media_errors > 0 THEN ', ' || media_errors || ' media errors' ELSE '' END ||
       CASE WHEN unprotected OR condition = 'jbod' THEN '; nothing else holds its data' ELSE '' END
FROM (SELECT *, substr(CASE WHEN condition = 'predicted' THEN ', ' || state ELSE '' END ||
                       CASE WHEN smart_alert LIKE 'Yes%' THEN ', S.M.A.R.T. alert' ELSE '' END ||
                       CASE WHEN predictive_failures > 0
                            THEN ', predictive failures ' || predictive_failures ELSE '' END, 3)
             AS told
      FROM drive_states
      WHERE condition = 'predicted' OR predictive_failures > 0 OR smart_alert LIKE 'Yes%');

-- @rule drive.media-errors
-- @part drives
-- @area drives
-- @column media_errors
-- @why Parts of the medium could not be read or written. When the count grows, the drive is
--   failing.
-- @next Compare it with an earlier collection. Replace the drive if it grows or the log goes on
--   about it.
-- @source check_lsi_raid
SELECT CASE WHEN unprotected AND volumes > 0 THEN 'critical' ELSE 'warning' END, id,
       'media errors ' || media_errors, NULL,
       'Watch ' || called || ': ' || media_errors || ' media errors; replace it if they grow'
FROM drive_states WHERE media_errors > setting('media_errors');

-- @rule drive.other-errors
-- @part drives
-- @area drives
-- @column other_errors
-- @why Errors on the way to the drive come from a cable, a plug or the backplane more often than
--   from the drive.
-- @next Compare the count with an earlier collection; if it grows, reseat drive and cable.
-- @source check_lsi_raid -Io
SELECT 'notice', id, 'other errors ' || other_errors, NULL,
       'Look at the connection of ' || called || ' if its count of other errors (' ||
       other_errors || ') grows'
FROM drive_states WHERE other_errors > setting('other_errors');

-- @rule drive.unreadable-sectors
-- @part drives
-- @area drives
-- @log
-- @why The controller logged errors of the drive's medium (sense key 3) or hardware (4) lately.
-- @next Look at the entries. If there are more, replace the drive.
-- @source SCSI sense keys
SELECT 'warning', part_id,
       count(*) || ' times sense key ' || group_concat(DISTINCT substr(sense, 1, 1)) || ', last ' ||
       max(time), NULL,
       'Replace ' || called || ' if this goes on: ' || count(*) ||
       ' medium or hardware errors in the log, last ' || max(time), id AS event
FROM lsi_events
WHERE code = 0x71 AND part = 'drives' AND sense GLOB '[34]/*' AND recent(time) GROUP BY part_id;

-- @rule drive.resets
-- @part drives
-- @area drives
-- @log
-- @why Commands to the drive took too long and it was reset, more than once lately.
-- @next Look at its cable and power first, then at the drive.
-- @source MegaRAID event codes
SELECT 'warning', part_id, count(*) || ' time-outs or resets, last ' || max(time), NULL,
       'Look at the connection of ' || called || ': ' || count(*) ||
       ' time-outs or resets, last ' || max(time), id AS event
FROM lsi_events
WHERE part = 'drives' AND (code IN (0x10b, 0x10c) OR text LIKE 'PD % reset (Type%')
      AND recent(time)
GROUP BY part_id HAVING count(*) >= setting('resets');

-- @rule drive.no-answer
-- @part drives
-- @area drives
-- @column answer
-- @why The tool asked the drive for its details and got an error instead, so its counts are not
--   known.
-- @next Ask again; if it stays so, look at the drive, its cable and its slot.
-- @source check_lsi_raid #3, #28
SELECT 'warning', id, answer, NULL, 'Look at ' || called || ': it did not answer (' || answer || ')'
FROM drive_states WHERE answer IS NOT NULL;

-- @rule drive.foreign
-- @part drives
-- @area drives
-- @column grp
-- @why The drive carries the arrays of another controller; what is on it is not in use.
-- @next Find out where it comes from, then import or clear it: storcli /cX/fall show.
-- @source check_lsi_raid
SELECT 'warning', id, 'DG F', NULL, 'Import or clear the foreign configuration of ' || called
FROM drive_states WHERE grp = 'F';

-- @rule drive.hot
-- @part drives
-- @area drives
-- @column temperature
-- @why The drive is hotter than it may be for long.
-- @next Look at fans, filters, empty slots beside it, and at the room.
-- @source arcconf's threshold of the drive; otherwise what drives' data sheets allow
SELECT CASE WHEN temperature >= most THEN 'critical' ELSE 'warning' END, id,
       printf('%.1f C (warning from %d, critical from %d)', temperature, warm, most), NULL,
       CASE WHEN temperature >= most
            THEN printf('Cool %s: %.1f °C, and %d is its limit', called, temperature, most)
            ELSE printf('Cool %s: %.1f °C, from %d on it is too warm', called, temperature, warm)
       END
FROM (SELECT id, called, temperature,
             coalesce(temperature_limit, setting(kind || '_critical')) AS most,
             coalesce(temperature_limit - 5, setting(kind || '_warning')) AS warm
      FROM (SELECT *, CASE WHEN media LIKE '%SSD%' THEN 'ssd' ELSE 'hdd' END AS kind
            FROM drive_states)
      WHERE temperature > 0 AND temperature < 125)
WHERE temperature >= warm;

-- @rule drive.worn
-- @part drives
-- @area drives
-- @column wear_left
-- @why The cells of the drive have been written nearly as often as they can be.
-- @next Order its replacement.
-- @source arcconf's usage remaining
SELECT CASE WHEN wear_left <= 5 THEN 'critical' ELSE 'warning' END, id, wear_left || ' % left',
       NULL,
       'Order a replacement for ' || called || ': ' || wear_left || ' % of its life is left'
FROM drive_states WHERE wear_left <= setting('wear_left');

-- @rule drive.slow-link
-- @part drives
-- @area drives
-- @column link_speed
-- @why Its link is slower than that of drives of its kind on the same controller; often a contact
--   is bad.
-- @next Reseat the drive; if that does not help, try another one in its slot.
SELECT 'notice', id, d.link_speed || ' of ' || d.device_speed || ' Gb/s', NULL,
       'Reseat ' || called || ': its link runs at ' || d.link_speed || ' of ' || d.device_speed ||
       ' Gb/s'
FROM drive_states d
JOIN best_links b ON b.controller = d.controller AND b.device_speed = d.device_speed
WHERE d.link_speed < d.device_speed AND d.link_speed < b.link_speed;

-- @rule drive.failed-before
-- @part drives
-- @area drives
-- @column failure_reason
-- @why The controller took the drive out of use once, for this reason; it is in use again.
-- @next Nothing, if somebody did so on purpose. Otherwise keep an eye on its error counts.
-- @source arcconf's last failure reason
SELECT 'notice', id, failure_reason, NULL,
       'Keep an eye on ' || called || ': it has failed before (' || failure_reason || ')'
FROM drive_states
WHERE lower(failure_reason) NOT IN ('no failure', 'none', 'not applicable', 'n/a', '')
      AND condition NOT IN ('failed', 'missing', 'bad');

-- @rule drive.state-not-known
-- @part drives
-- @area drives
-- @column state
-- @why The tool calls the drive's state by a word that is not known here, or tells none, as in a
--   report that was cut off.
-- @next Look the word up in the tool's manual; a rule of your own (--rules) can judge it. Where
--   there is none, collect again.
-- @source Checkmk werk on JBOD, 2025
SELECT 'unknown', id, coalesce(state, 'no state in the report'), NULL,
       coalesce('Find out what "' || state || '" means of ' || called,
                'Collect again: the report shows no state of ' || called)
FROM drive_states
WHERE condition = 'unknown'
      OR (condition = 'untold'
          AND vendor IN (SELECT vendor FROM drive_states WHERE condition <> 'untold'));

-- ----------------------------------------------------------------------------------------- arrays

-- @rule volume.offline
-- @part volumes
-- @area arrays
-- @column state
-- @why The volume cannot be used, and what is on it may be lost.
-- @next Write nothing, leave all drives where they are, and call the maker's support.
SELECT 'critical', v.id, v.state, (SELECT c.failed FROM volume_causes c WHERE c.id = v.id),
       'Leave all drives in place and call support: ' || called || ' is offline (' || v.state || ')'
FROM volume_states v WHERE condition = 'offline';

-- @rule volume.degraded
-- @part volumes
-- @area arrays
-- @column state
-- @why A drive of the volume has failed, is missing or is not rebuilt yet. The next failure can
--   cost the data.
-- @next While a rebuild runs, wait for its end and leave the drives where they are. Where none
--   runs, replace the failed drive.
-- @source check_raid #47
SELECT CASE WHEN rebuilds THEN 'warning' ELSE 'critical' END, id,
       state || CASE WHEN rebuilds THEN ', being rebuilt' ELSE '' END,
       coalesce(failed, missing, CASE WHEN NOT rebuilds THEN loose END),
       CASE WHEN rebuilds
            THEN 'Wait for the rebuild of ' || called || ', and leave its drives in place'
            ELSE 'Replace the failed drive of ' || called || ': it is degraded (' || state || ')'
            END
FROM (SELECT v.*,
             coalesce(c.rebuilds, 0) AS rebuilds, c.failed, c.missing,
             (SELECT l.id FROM loose_drives l WHERE l.controller = v.controller) AS loose
      FROM volume_states v LEFT JOIN volume_causes c ON c.id = v.id
      WHERE condition = 'degraded');

-- @rule volume.partly-degraded
-- @part volumes
-- @area arrays
-- @column state
-- @why A drive of the volume has failed, is missing or is not rebuilt yet; the volume survives one
--   more failure.
-- @next While a rebuild runs, wait for its end. Where none runs, replace the failed drive.
-- @source Checkmk megaraid
SELECT 'warning', v.id, v.state || CASE WHEN c.rebuilds THEN ', being rebuilt' ELSE '' END,
       c.failed,
       CASE WHEN c.rebuilds
            THEN 'Wait for the rebuild of ' || called || ', and leave its drives in place'
            ELSE 'Replace the failed drive of ' || called || ': it is partly degraded (' ||
                 v.state || ')' END
FROM volume_states v LEFT JOIN volume_causes c ON c.id = v.id WHERE condition = 'partly';

-- @rule volume.recovering
-- @part volumes
-- @area arrays
-- @column state
-- @why The volume is being built, rebuilt or changed; until that is done its protection is not
--   complete.
-- @next Look again when it is over.
-- @source check_raid #190
SELECT 'warning', id, state, NULL, 'Wait until ' || called || ' is done: ' || state
FROM volume_states WHERE condition = 'recovering';

-- @rule volume.blocked
-- @part volumes
-- @area arrays
-- @column access
-- @why The controller lets nobody read or write this volume.
-- @next Look for offline drives of its group and for cache contents that the controller still
--   keeps.
SELECT 'critical', id, 'Access ' || access, NULL, 'Free ' || called || ': access to it is blocked'
FROM volume_states WHERE access IN ('B', 'Blocked');

-- @rule volume.stripes-lost
-- @part volumes
-- @area arrays
-- @column failed_stripes
-- @why Some stripes of the volume were lost; files in them are damaged.
-- @next Find the damaged files and restore them from a backup.
-- @source check_raid (arcconf)
SELECT 'critical', id, 'Failed stripes ' || failed_stripes, NULL,
       'Restore files of ' || called || ' from a backup: it has lost stripes'
FROM volume_states WHERE lower(failed_stripes) NOT IN ('no', 'none', '0', 'n/a', '');

-- @rule volume.never-checked
-- @part volumes
-- @area arrays
-- @column consistent
-- @why Parity or mirror was never made consistent, so a rebuild may bring back wrong data.
-- @next Run a consistency check when there is little load.
-- @source check_lsi_raid warns; most healthy volumes say No
SELECT 'notice', id, 'Consist No', NULL, 'Run a consistency check of ' || called
FROM volume_states
WHERE consistent = 'No' AND redundant AND condition = 'optimal'
      AND coalesce(level, '') NOT LIKE 'Cac%';

-- @rule volume.state-not-known
-- @part volumes
-- @area arrays
-- @column state
-- @why The tool calls the volume's state by a word that is not known here, or tells none, as in a
--   report that was cut off.
-- @next Look the word up in the tool's manual; a rule of your own (--rules) can judge it. Where
--   there is none, collect again.
SELECT 'unknown', id, coalesce(state, 'no state in the report'), NULL,
       coalesce('Find out what "' || state || '" means of ' || called,
                'Collect again: the report shows no state of ' || called)
FROM volume_states WHERE condition IN ('unknown', 'untold');

-- @rule group.degraded
-- @part groups
-- @area arrays
-- @column state
-- @why The group of drives is not whole, though none of its volumes says so.
-- @next Look at its drives.
SELECT CASE WHEN condition IN ('partly', 'recovering') OR rebuilds THEN 'warning'
            ELSE 'critical' END,
       id, state, failed,
       'Look at the drives of group ' || id || ': it is not whole (' || state || ')'
FROM (SELECT g.*, coalesce(d.rebuilds, 0) AS rebuilds, d.failed
      FROM groups g LEFT JOIN group_drives d ON d.grp = g.id
      WHERE g.condition IN ('degraded', 'partly', 'offline', 'recovering'))
      g
WHERE NOT EXISTS (SELECT 1 FROM volume_states v
                  WHERE v.grp = g.id AND v.condition NOT IN ('optimal', 'untold', 'unknown'));

-- @rule group.drive-missing
-- @part missing_drives
-- @area arrays
-- @column state
-- @why A place of the array has no drive.
-- @next Put a drive in. Start the rebuild, if it does not start by itself.
SELECT 'critical', m.id, m.state,
       CASE WHEN coalesce(own.drives, 0) + coalesce(loose.drives, 0) = 1
            THEN coalesce(own.id, loose.id) END,
       'Put a drive in: ' || m.id ||
       coalesce(' of the array ' || (SELECT v.id FROM group_volumes v WHERE v.grp = m.grp), '') ||
       ' is missing'
FROM missing_drives m
LEFT JOIN lost_drives own ON own.controller = m.controller AND own.grp = m.grp
LEFT JOIN lost_drives loose ON loose.controller = m.controller AND loose.grp IS NULL
WHERE m.state LIKE 'Msng%' OR m.state LIKE 'Missing%';

-- @rule group.no-spare
-- @part volumes
-- @area arrays
-- @column state
-- @why The volume is degraded and nothing is being rebuilt, since no spare drive took over.
-- @next Put a good drive in and make it a spare.
SELECT 'notice', v.id, 'no hot spare on ' || v.controller, NULL,
       'Give ' || v.controller || ' a spare drive: ' || v.called || ' has nothing to be rebuilt on'
FROM volume_states v
WHERE v.condition IN ('degraded', 'partly')
      AND NOT coalesce((SELECT d.rebuilds FROM group_drives d WHERE d.grp = v.grp), 0)
      AND NOT coalesce(v.controller IN (SELECT controller FROM drive_states
                                        WHERE condition = 'spare'), 0);

-- ------------------------------------------------------------------------------------ controllers

-- @rule cache.backup
-- @part cache_backups
-- @area controllers
-- @column state
-- @why Nothing keeps the write cache when power fails. Either its contents would be lost, or it is
--   switched off and writing is slow.
-- @next While it charges or learns, look again in some hours. Otherwise replace battery or
--   capacitor. Until then, use write-through for data that must not be lost.
-- @source check_lsi_raid; check_raid (arcconf); check_adaptec_raid
SELECT CASE condition
       WHEN 'passing' THEN 'notice'
       WHEN 'failed' THEN 'critical'
       WHEN 'bad' THEN CASE WHEN EXISTS (SELECT 1 FROM volume_states v
                                         WHERE v.controller = c.controller
                                               AND v.writes_back)
                            THEN 'critical' ELSE 'warning' END
       ELSE 'unknown' END, id, state, NULL,
       CASE condition
       WHEN 'passing' THEN 'Look again at ' || called || ': ' || state
       WHEN 'unknown' THEN 'Find out what "' || state || '" means of ' || called
       ELSE 'See to ' || called || ': it does not protect the write cache (' || state || ')' END
FROM (SELECT b.*, p.called FROM cache_backups b
      JOIN called_parts p ON p.part = 'cache_backups' AND p.id = b.id) c
WHERE condition NOT IN ('good', 'absent', 'untold');

-- @rule cache.unprotected
-- @part volumes
-- @area controllers
-- @column write_back, cache
-- @why Writing ends in a cache that no battery, capacitor or flash keeps: what is in it when power
--   fails is lost, and the volume may be damaged. Somebody chose that; it is no fault.
-- @next Unless that is meant, set the volume to write-through, or have a cache backup fitted.
-- @source arcconf's write-cache status; storcli's AWB
SELECT 'notice', id,
       'writing ends in the cache, ' ||
       coalesce('backup of the cache of ' || controller || ': ' || told,
                'no cache backup told of on ' || controller), NULL,
       'Set ' || called || ' to write-through, unless losing its cache with the power is meant: ' ||
       coalesce('the cache of ' || controller || ' has no backup (' || told || ')',
                'nothing tells of a backup of the cache of ' || controller)
FROM (SELECT *, (SELECT min(b.state) FROM cache_backups b
                 WHERE b.controller = v.controller AND b.condition = 'absent') AS told
      FROM volume_states v) v
WHERE writes_back
      AND NOT EXISTS (SELECT 1 FROM cache_backups b
                      WHERE b.controller = v.controller AND b.condition <> 'absent');

-- @rule cache.status
-- @part controllers
-- @area controllers
-- @column cache_status
-- @why The controller does not use its cache, or not as it is set, so writing is slow.
-- @next Where its battery or capacitor still charges, look again in some hours; otherwise replace
--   that.
-- @source check_raid (arcconf); check_adaptec_raid
SELECT CASE WHEN lower(cache_status) LIKE '%fail%' THEN 'critical'
            WHEN lower(cache_status) LIKE '%disabled%' THEN 'warning' ELSE 'unknown' END, id, told,
       (SELECT group_concat(b.id, ';') FROM cache_backups b
        WHERE b.controller = c.id AND b.condition IN ('passing', 'bad', 'failed')),
       'See to the cache of controller ' || id || ': it is not in use (' || told || ')'
FROM (SELECT *, cache_status || coalesce(': ' || cache_reason, '') AS told FROM controllers) c
WHERE lower(cache_status) NOT IN ('ok', 'optimal', 'not configured', 'not applicable',
                                  'not present', 'not installed', 'not supported', 'n/a', '');

-- @rule cache.hot
-- @part cache_backups
-- @area controllers
-- @column temperature
-- @why Heat wears batteries and capacitors out.
-- @next See that air gets to the controller.
-- @source check_lsi_raid
SELECT CASE WHEN temperature >= most THEN 'critical' ELSE 'warning' END, id,
       printf('%.1f C', temperature), NULL,
       printf('Cool the %s of %s: %.1f °C, and %d is its limit', kind, controller, temperature,
              most)
FROM (SELECT *, CASE kind WHEN 'BBU' THEN 50 ELSE 70 END AS warm,
             CASE kind WHEN 'BBU' THEN 60 ELSE 85 END AS most
      FROM cache_backups WHERE kind IN ('BBU', 'CacheVault'))
WHERE temperature >= warm;

-- @rule controller.status
-- @part controllers
-- @area controllers
-- @column status
-- @why The controller says of itself that it is not well.
-- @next Look at its volumes, drives and cache protection. If they are well, it may have to be
--   restarted.
-- @source check_raid (arcconf)
SELECT CASE WHEN status LIKE '%Attention%' OR status LIKE '%Degraded%' THEN 'warning'
            ELSE 'critical' END, id, status,
       coalesce((SELECT group_concat(v.id, ';') FROM volume_states v WHERE v.controller = c.id
                 AND v.condition IN ('degraded', 'partly', 'offline')),
                (SELECT group_concat(d.id, ';') FROM drive_states d WHERE d.controller = c.id
                 AND d.condition IN ('failed', 'missing', 'bad')),
                (SELECT group_concat(b.id, ';') FROM cache_backups b WHERE b.controller = c.id
                 AND b.condition IN ('failed', 'bad'))),
       'Find out why controller ' || id || coalesce(' (' || model || ')', '') || ' is not well: ' ||
       status
FROM controllers c WHERE lower(status) NOT IN ('optimal', 'okay', 'ok', '');

-- @rule controller.volumes
-- @part controllers
-- @area controllers
-- @column volumes_failed
-- @why The controller counts volumes as failed or degraded, though none of those listed is.
-- @next Look at the controller's own list of volumes.
SELECT 'critical', id,
       coalesce(volumes_failed, 0) || ' failed, ' || coalesce(volumes_degraded, 0) || ' degraded',
       NULL,
       'Find the volumes that controller ' || id || ' counts as failed or degraded'
FROM controllers c
WHERE (volumes_failed > 0 OR volumes_degraded > 0)
      AND NOT EXISTS (SELECT 1 FROM volume_states v
                      WHERE v.controller = c.id AND v.condition <> 'optimal');

-- @rule controller.defunct
-- @part controllers
-- @area controllers
-- @column drives_defunct
-- @why The controller counts a drive that it can no longer use.
-- @next Find it: among the drives, or one that was taken out and never taken off its books.
SELECT 'warning', id, drives_defunct || ' defunct',
       lost,
       'Find what controller ' || id || ' counts as defunct drives (' || drives_defunct || ')' ||
       CASE WHEN lost IS NULL THEN ': none of those listed has failed' ELSE '' END
FROM (SELECT c.*, (SELECT group_concat(d.id, ';') FROM drive_states d
                   WHERE d.controller = c.id AND d.condition IN ('failed', 'missing')) AS lost
      FROM controllers c WHERE drives_defunct > 0);

-- @rule controller.hot
-- @part controllers
-- @area controllers
-- @column temperature
-- @why The controller's chip is hotter than it should be.
-- @next See that air gets to the card.
-- @source arcconf's own word; check_lsi_raid
SELECT CASE WHEN temperature >= setting('roc_critical') THEN 'critical' ELSE 'warning' END, id,
       trim(iif(temperature IS NULL, '', printf('%.1f C', temperature)) || ' ' ||
            coalesce(temperature_word, '')),
       NULL, 'Cool controller ' || id ||
       iif(temperature IS NULL, '', printf(': %.1f °C', temperature))
FROM controllers
WHERE lower(temperature_word) NOT IN ('normal', 'not supported', 'not applicable', 'n/a', '')
      OR (vendor = 'LSI' AND temperature >= setting('roc_warning'));

-- @rule enclosure.state
-- @part enclosures
-- @area drives
-- @column state
-- @why The enclosure tells of a fault in itself.
-- @next Look at its fans, its power supplies and its cables.
-- @source check_raid #75
SELECT 'warning', id, state, NULL,
       'Look at enclosure ' || coalesce(number, id) || coalesce(' (' || product || ')', '') ||
       ': ' || state
FROM enclosures WHERE lower(state) NOT IN ('ok', 'optimal', '-', '');

-- --------------------------------------------------------------------------- the controllers' logs

-- @rule lsi.event
-- @part controllers
-- @area controllers
-- @log
-- @why The controller logged this lately, and nothing later in the log says that it is over.
-- @next Look at the entry, and at the part that it names.
-- @source MegaRAID event codes
SELECT CASE WHEN n.code IN (0xfa, 0xfb, 0xfc)
                 AND EXISTS (SELECT 1 FROM volume_states v WHERE v.id = n.part_id
                             AND v.condition NOT IN ('unknown', 'untold'))
            THEN 'notice' ELSE n.severity END,
       n.part_id, printf('%d x 0x%02x %s, last %s', n.times, n.code, n.text, n.time), NULL,
       'Look at ' || n.called || ': "' || n.text || '" on ' || n.time,
       n.part AS part, n.event AS event,
       CASE n.part WHEN 'drives' THEN 'drives' WHEN 'volumes' THEN 'arrays' ELSE 'controllers' END
       AS area
FROM (SELECT e.part, e.part_id, e.called, e.code, c.severity, count(*) AS times, e.text,
             max(e.time) AS time, e.id AS event
      FROM lsi_events e JOIN lsi_codes c ON c.code = e.code
      LEFT JOIN lsi_ended o ON o.part_id = e.part_id AND o.code = e.code
      WHERE c.severity <> 'none' AND recent(e.time)
            AND (o.number IS NULL OR coalesce(e.number > o.number, 1))
      GROUP BY e.part_id, e.code) n
WHERE NOT (n.part = 'volumes' AND EXISTS (SELECT 1 FROM volume_states v WHERE v.id = n.part_id
                                          AND v.condition = 'optimal'))
      AND NOT (n.part = 'cache_backups'
               AND EXISTS (SELECT 1 FROM cache_backups b
                           WHERE b.id = n.part_id AND b.condition IN ('good', 'absent')));

-- @rule lsi.event-class
-- @part controllers
-- @area controllers
-- @log
-- @why The controller's firmware calls this critical, fatal or dead, lately, and its code is in no
--   list here; or its entries have no codes that are known, and these are warnings.
-- @next Look the entries up in the controller's manual.
-- @source MegaRAID event classes
SELECT CASE WHEN max(e.level) >= 3 THEN 'critical' ELSE 'warning' END, e.part_id,
       printf('%d x %s%s, last %s', count(*), iif(e.code IS NULL, '', printf('0x%02x ', e.code)),
              e.text, max(e.time)),
       NULL, 'Look at ' || e.called || ': "' || e.text || '" on ' || max(e.time),
       e.part AS part, e.id AS event,
       CASE e.part WHEN 'drives' THEN 'drives' WHEN 'volumes' THEN 'arrays' ELSE 'controllers' END
       AS area
FROM lsi_events e LEFT JOIN lsi_codes c ON c.code = e.code
WHERE e.level >= 2 AND recent(e.time) AND c.code IS NULL
GROUP BY e.part_id, coalesce(e.code, e.text)
UNION ALL
SELECT 'notice', controller,
       printf('%d warning%s, last %s %s', count(*), CASE count(*) WHEN 1 THEN '' ELSE 's' END,
              max(time), text), NULL,
       'Look at the log of controller ' || controller || ': "' || text || '" on ' || max(time),
       'controllers', id, 'controllers'
FROM lsi_events WHERE level = 1 AND code IS NULL AND recent(time) GROUP BY controller;

-- @rule lsi.recovered
-- @part volumes
-- @area arrays
-- @log
-- @why The volume was degraded or offline lately and is whole again.
-- @next Find out why, in what the log says of its drives at that time.
SELECT 'notice', e.part_id, e.text || ', ' || max(e.time), NULL,
       'Find out why ' || e.called || ' was not whole on ' || max(e.time), e.id AS event
FROM lsi_events e JOIN volume_states v ON v.id = e.part_id AND v.condition = 'optimal'
WHERE e.code IN (0xfb, 0xfc) AND e.part = 'volumes' AND recent(e.time) GROUP BY e.part_id;

-- @rule microchip.event
-- @part controllers
-- @area controllers
-- @log
-- @why The controller's log has warnings or errors of late.
-- @next Look at the entries.
SELECT CASE WHEN worst >= 2 THEN 'warning' ELSE 'notice' END, part_id,
       printf('%d %s, last %s %s', times, CASE times WHEN 1 THEN 'entry' ELSE 'entries' END, time,
              text) || over, NULL,
       'Look at the log of controller ' || part_id || ': "' || text || '" on ' || time || over,
       event AS event
FROM (SELECT e.part_id, count(*) AS times, e.text, max(e.time) AS time, e.id AS event,
             max(CASE WHEN o.number IS NULL THEN e.level END) AS worst,
             coalesce(', over since ' || o.time, '') AS over
      FROM other_events e LEFT JOIN other_ended o ON o.began = e.id
      WHERE e.source = 'Microchip' AND e.level >= 1 AND recent(e.time)
      GROUP BY e.part_id);

-- @rule sas2.event
-- @part controllers
-- @area controllers
-- @log
-- @why The controller's log has warnings. It counts time from its start, so nobody knows how old
--   they are.
-- @next Look at the entries; sas2ircu 0 display tells how things are now.
SELECT CASE WHEN standing >= 2 THEN 'warning' ELSE 'notice' END, 'sas2',
       printf('%d %s, highest class %d: %s', times,
              CASE times WHEN 1 THEN 'entry' ELSE 'entries' END, worst, texts), NULL,
       'Look at the log of the SAS2 controller: ' || texts, event AS event
FROM (SELECT count(*) AS times, max(level) AS worst, max(standing) AS standing,
             group_concat(told, '; ') AS texts, max(event) AS event
      FROM (SELECT e.level, CASE WHEN o.number IS NULL THEN e.level END AS standing,
                   CASE WHEN e.number = max(e.number) OVER (PARTITION BY e.text)
                        THEN e.text || coalesce(', over since "' || o.text || '"', '') END AS told,
                   first_value(e.id) OVER (ORDER BY e.number DESC) AS event
            FROM other_events e LEFT JOIN other_ended o ON o.began = e.id
            WHERE e.source = 'SAS2' AND e.level >= 1 ORDER BY e.number))
WHERE times > 0;

-- ------------------------------------------------------------------------------------ BMC: sensors

-- @rule sensor.threshold
-- @part sensors
-- @area sensors
-- @column status
-- @why The BMC says that the reading is beyond one of its limits.
-- @next Of a temperature look at fans, filters and the room; of a fan at the fan; of a voltage at
--   power supply and board.
-- @source ipmiutil; Redfish
SELECT condition, id,
       coalesce(reading || ' ' || coalesce(unit, '') || ', ', '') || status || limits, NULL,
       'Look at ' || called || ': ' || coalesce(reading || ' ' || coalesce(unit, '') || ', ', '') ||
       CASE condition WHEN 'critical' THEN 'beyond a critical limit' ELSE 'beyond a limit' END,
       area AS area
FROM (SELECT *, CASE WHEN coalesce(lc, lnc, unc, uc) IS NULL THEN '' ELSE
                printf(', limits %s/%s..%s/%s', coalesce(lc, '-'), coalesce(lnc, '-'),
                       coalesce(unc, '-'), coalesce(uc, '-')) END AS limits
      FROM sensor_states)
WHERE condition IN ('warning', 'critical');

-- @rule sensor.state
-- @part sensors
-- @area sensors
-- @column states
-- @why The BMC reports this state of the sensor now.
-- @next Look at the device that it watches.
-- @source IPMI 2.0, tables 42-2 and 42-3
SELECT b.severity, b.id, b.meaning || coalesce(' (' || b.status || ')', ''),
       CASE WHEN b.event_type = 0x0b THEN
         coalesce((SELECT CASE WHEN count(DISTINCT o.id) = 1 THEN min(o.id) END FROM sensor_bits o
                   WHERE o.type = b.type AND o.event_type <> 0x0b
                         AND o.severity IN ('critical', 'warning')),
                  (SELECT CASE WHEN count(*) = 1 THEN min(o.id) END FROM sensor_states o
                   WHERE o.type = b.type AND o.condition IN ('critical', 'warning'))) END,
       CASE b.severity
       WHEN 'unknown'
       THEN 'Find out what state ' || b.called || ' is in: its bits say "' || b.meaning ||
            '", its word "' || b.status || '"'
       ELSE 'Look at ' || b.called || ': ' || b.meaning END, b.area AS area
FROM sensor_bits b;

-- @rule sensor.word
-- @part sensors
-- @area sensors
-- @column status
-- @why Of this sensor only ipmiutil's word is known, not its state bits; or the word tells of
--   trouble and the bits do not.
-- @next Look at the device that it watches; ipmiutil sensor tells the bits.
-- @source ipmiutil
SELECT CASE WHEN s.condition = 'discrete' THEN 'notice'
            WHEN w.word IS NULL THEN 'unknown' ELSE max(w.severity) END, s.id, s.status, NULL,
       CASE WHEN s.condition = 'discrete'
            THEN 'Find out what state ' || s.called || ' is in: its word is "' || s.status ||
                 '", and its bits say nothing of the kind'
            WHEN w.word IS NULL THEN 'Find out what "' || s.status || '" means of ' || s.called
            ELSE 'Look at ' || s.called || ': ' || s.status END, s.area AS area
FROM sensor_states s
LEFT JOIN ipmiutil_words w ON w.word = s.word
                              AND (w.type IS NULL OR s.type IS NULL OR w.type = s.type)
WHERE (s.condition = 'word'
       AND (w.word IS NOT NULL OR s.event_type = 0x01
            OR (s.word NOT GLOB '0x*' AND s.word NOT IN (SELECT word FROM plain_words)
                AND s.word NOT IN (SELECT word FROM ipmiutil_words))))
      OR (s.condition = 'discrete' AND s.word IN (SELECT word FROM ipmiutil_words)
          AND s.id NOT IN (SELECT id FROM sensor_bits))
GROUP BY s.id;

-- @rule psu.status
-- @part power_supplies
-- @area power
-- @column status
-- @why The power supply tells of a fault, gets no power, is not there, or tells no status, as in a
--   report that was cut off.
-- @next Look at cord and socket; then replace the power supply. Without a status, collect again.
SELECT CASE WHEN faulty OR ac_volts = 0 THEN 'critical' WHEN gone THEN 'warning'
            ELSE 'unknown' END, id, told, NULL,
       'Look at ' || id || ': ' || told
FROM (SELECT *, substr(CASE WHEN faulty THEN ', ' || status ELSE '' END ||
                       CASE WHEN ac_volts = 0 THEN ', AC input 0 V' ELSE '' END ||
                       CASE WHEN gone THEN ', absent'
                            WHEN status IS NULL THEN ', no status' ELSE '' END, 3) AS told
      FROM (SELECT *, coalesce(lower(status) NOT IN ('ok', 'present', 'good', ''), 0) AS faulty,
                   text LIKE '%absent%' OR text LIKE '%not present%' AS gone
            FROM power_supplies))
WHERE told <> '';

-- @rule led.fault
-- @part leds
-- @area bmc
-- @column state
-- @why An LED that tells of a fault is on.
-- @next Look at the part that it belongs to.
SELECT CASE WHEN colour = 'red' THEN 'critical' ELSE 'warning' END, id,
       coalesce(colour || ' ', '') || state, NULL,
       'Look for the fault: ' || id || ' is ' || coalesce(colour || ' ', '') || state
FROM leds
WHERE state NOT IN ('off', 'out')
      AND (id LIKE '%fault%' OR (id LIKE '%status%' AND colour IN ('amber', 'red', 'yellow')));

-- @rule bmc.self-test
-- @part self_tests
-- @area bmc
-- @column code
-- @why The BMC did not pass its own test; 55h would say that it did.
-- @next After 57h reload what it calls damaged (SDR, SEL, FRU); after 58h the BMC itself has
--   failed.
-- @source IPMI 2.0, 20.4
SELECT CASE code WHEN '57' THEN 'warning' WHEN '58' THEN 'critical' WHEN '56' THEN 'notice'
                 WHEN 'ff' THEN 'warning' ELSE 'unknown' END, id, coalesce(text, code), NULL,
       'See to the BMC: ' || coalesce(text, code)
FROM self_tests WHERE code IS NOT '55';

-- ---------------------------------------------------------------------------------------- BMC: log

-- @rule sel.state
-- @part sensors
-- @area sensors
-- @log
-- @why The BMC logged it, no later entry says that it is over, and the sensor does not say that it
--   is well again.
-- @next Look at the device that the sensor watches.
-- @source IPMI 2.0, tables 42-2 and 42-3
SELECT CASE WHEN NOT coalesce(recent(time), 0) THEN 'notice'
            WHEN condition = 'warning' THEN 'warning' ELSE severity END, part_id,
       printf('%d x %s%s, last %s', times, meaning, coalesce(': ' || text, ''),
              coalesce(time, 'unknown')),
       NULL, 'Look at ' || called || ': ' || meaning || coalesce(', on ' || time, ''),
       area AS area, event AS event
FROM (SELECT e.part_id, e.called, e.area, e.condition, e.severity, e.meaning, e.text,
             count(*) AS times, max(e.time) AS time, e.id AS event
      FROM sel_events e
      LEFT JOIN sel_ended o
                ON o.sensor = e.sensor AND o.code IS e.code AND o.event_type = e.event_type
                AND o.bit = CASE e.event_type WHEN 0x0b THEN -1 ELSE e."offset" END
      WHERE e.asserted = 1 AND e.lasts = 1 AND e.severity IN ('critical', 'warning')
            AND (o.number IS NULL OR coalesce(e.number > o.number, 1))
            AND (e.condition IS NULL OR e.condition IN ('word', 'warning', 'critical')
                 OR (e.condition = 'discrete' AND (e.states >> e."offset") & 1))
      GROUP BY e.part_id, e.event_type, e."offset");

-- @rule sel.event
-- @part sensors
-- @area sensors
-- @log
-- @why The BMC logged this lately.
-- @next Note which processor, memory or bus it was and watch for more; of a watchdog, find out why
--   the system hung.
-- @source IPMI 2.0, table 42-3
SELECT severity, part_id,
       printf('%d x %s%s, last %s', count(*), meaning, coalesce(': ' || text, ''), max(time)), NULL,
       'Look at ' || called || ': ' || meaning || ', on ' || max(time), area AS area, id AS event
FROM sel_events
WHERE asserted = 1 AND lasts = 0 AND recent(time) GROUP BY part_id, "offset";

-- @rule sel.severity
-- @part sensors
-- @area sensors
-- @log
-- @why ipmiutil calls this entry major or critical, and it is recent; it is in no list here.
-- @next Look at the entry.
-- @source ipmiutil
SELECT CASE WHEN level = 3 THEN 'critical' ELSE 'warning' END, part_id,
       printf('%d x %s, last %s', count(*), coalesce(text, kind), max(time)), NULL,
       'Look at ' || called || ': "' || coalesce(text, kind) || '" on ' || max(time),
       area AS area, id AS event
FROM sel_events
WHERE asserted = 1 AND level >= 2 AND meaning IS NULL AND recent(time)
GROUP BY part_id, text, level;

-- @rule sel.ecc-flood
-- @part sensors
-- @area memory
-- @log
-- @why So many memory errors that could still be corrected say that a module is about to fail.
-- @next Replace the module that the entries name.
SELECT 'warning', part_id, count(*) || ' correctable ECC errors, last ' || max(time), NULL,
       'Replace the memory module that ' || called || ' names: ' || count(*) ||
       ' correctable errors, last ' || max(time), id AS event
FROM sel_events
WHERE code = 0x0c AND event_type = 0x6f AND "offset" = 0 AND asserted = 1 AND recent(time)
GROUP BY part_id HAVING count(*) >= setting('ecc_errors');

-- @rule sel.full
-- @part sources
-- @area log
-- @column records
-- @why The log is nearly full, and then nothing more is logged.
-- @next Save it, then clear it: ipmiutil sel -d.
-- @source FreeIPMI
SELECT CASE WHEN records >= capacity THEN 'critical' ELSE 'warning' END, id,
       records || ' of ' || capacity || ' records', NULL,
       'Save and clear the hardware log: ' || records || ' of ' || capacity || ' records are used'
FROM sources WHERE capacity > 0 AND records * 100 >= capacity * setting('sel_full_percent');

-- @rule amt.event
-- @part sources
-- @area amt
-- @log
-- @why The AMT log has an entry of this severity of late.
-- @next Look at the entry.
SELECT CASE WHEN level >= 2 THEN 'critical' ELSE 'warning' END, 'amt',
       printf('%s%s (%s)', coalesce(kind || ': ', ''), text, max(time)), NULL,
       printf('Look at this machine: "%s%s" on %s', coalesce(kind || ': ', ''), text, max(time)),
       id AS event
FROM other_events WHERE source = 'AMT' AND level >= 1 AND recent(time) GROUP BY kind, text, level;

-- --------------------------------------------------------------------- what could not be looked at

-- @rule collection.failed
-- @part sources
-- @area collection
-- @column observed
-- @why The tool was asked, and what it answered is not understood or not complete. What it would
--   have told is not known.
-- @next Look at what the tool printed, run it by hand until it answers, then collect again.
-- @source check_raid #163
SELECT CASE WHEN id = 'fru' THEN 'notice' ELSE 'unknown' END, id,
       coalesce(class || ': ', '') || coalesce(observed, 'no answer'), NULL,
       CASE WHEN id IN (SELECT id FROM told_sources)
            THEN 'Find out why not all of ' || called || ' could be read: '
            ELSE 'Find out why ' || called || ' could not be read: ' END ||
       coalesce(observed, 'no answer')
FROM sources JOIN source_names USING (id) WHERE state = 'failed';

-- @rule collection.no-state
-- @part sources
-- @area collection
-- @why The report was read, yet it shows no state of anything: it was cut short, or is not the
--   whole of it.
-- @next Collect again.
SELECT 'unknown', s.id, 'no state in the report', NULL,
       'Collect again: the report on ' || called || ' shows no state of anything'
FROM sources s JOIN source_names n ON n.id = s.id
WHERE s.state = 'read' AND n.vendor IS NOT NULL
      AND NOT EXISTS (SELECT 1 FROM drive_states d
                      WHERE d.vendor = n.vendor AND d.condition <> 'untold')
      AND NOT EXISTS (SELECT 1 FROM volume_states v
                      WHERE v.vendor = n.vendor AND v.condition <> 'untold')
      AND NOT EXISTS (SELECT 1 FROM groups g WHERE g.vendor = n.vendor AND g.condition <> 'untold')
      AND NOT EXISTS (SELECT 1 FROM enclosures e JOIN controllers c ON c.id = e.controller
                      WHERE c.vendor = n.vendor AND e.state IS NOT NULL)
      AND NOT EXISTS (SELECT 1 FROM controllers c WHERE c.vendor = n.vendor
                      AND (c.status IS NOT NULL
                           OR (c.drives_declared = 0 AND coalesce(c.volumes_declared, 0) = 0)))
UNION ALL
SELECT 'unknown', id, 'no sensor has a state', NULL,
       'Collect again: no sensor of the BMC has a state'
FROM sources
WHERE id = 'sensors' AND state = 'read'
      AND NOT EXISTS (SELECT 1 FROM sensor_states WHERE condition <> 'absent');

-- @rule collection.incomplete
-- @part controllers
-- @area collection
-- @column drives_declared
-- @why The controller counts more volumes or drives than its report shows, so some were not judged.
-- @next Look at the report itself.
-- @source arcconf counts cache devices as well
SELECT CASE WHEN vendor = 'Microchip'
                 AND NOT coalesce(listed_volumes = 0 AND volumes_declared > 0, 0) THEN 'notice'
            ELSE 'unknown' END, id, told, NULL,
       'Look at the report of controller ' || id || ': it shows ' || told
FROM (SELECT *, substr(CASE WHEN listed_volumes < volumes_declared
                            THEN ', ' || listed_volumes || ' of ' || volumes_declared || ' volumes'
                            ELSE '' END ||
                       CASE WHEN listed_drives < drives_declared
                            THEN ', ' || listed_drives || ' of ' || drives_declared || ' drives'
                            ELSE '' END, 3) AS told
      FROM (SELECT c.*,
                   (SELECT count(*) FROM volume_states v WHERE v.controller = c.id)
                   AS listed_volumes,
                   (SELECT count(*) FROM drive_states d WHERE d.controller = c.id) AS listed_drives
            FROM controllers c))
WHERE told <> '';

-- @rule collection.clock-ahead
-- @part sources
-- @area log
-- @why Entries of the log are of a time after this collection, so its clock is ahead, or the one
--   that told the time of the collection is behind. How old they are, nobody knows: they count as
--   recent.
-- @next Set the clock of the device right.
SELECT 'notice', lower(source),
       coalesce(controller || ': ', '') || 'newest entry ' || max(time), NULL,
       'Set the clock of ' ||
       coalesce('controller ' || controller, (SELECT called FROM source_names n
                                              WHERE n.id = lower(source)), source) ||
       ' right: its log has entries up to ' || max(time) || ', after this collection',
       id AS event
FROM events WHERE ahead(time) GROUP BY source, controller;

-- @rule collection.unread
-- @part unread
-- @area collection
-- @column text
-- @why Lines of a report look like parts and could not be read, so what they tell was not judged.
-- @next Look at the lines; send them to whoever looks after this program.
SELECT 'unknown', CAST(min(CAST(id AS INTEGER)) AS TEXT),
       coalesce(nullif(count(*), 1) || ' lines, first: ', '') || text, NULL,
       'Look at ' || coalesce(tool, class, 'a report') || ': ' || count(*) ||
       CASE count(*) WHEN 1 THEN ' line was' ELSE ' lines were' END || ' not understood'
FROM (SELECT * FROM unread ORDER BY CAST(id AS INTEGER)) GROUP BY class, tool;

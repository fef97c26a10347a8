-- A night of a fleet as a Parquet file, for DuckDB and all that read these: years of them need no server.
--   pqfleet export --part drives --output drives.ndjson && duckdb < parquet.sql
-- All lines are looked at for the types of columns; what is alike is beside each other, which packs well.
COPY (SELECT * FROM read_ndjson('drives.ndjson', sample_size = -1) ORDER BY model, firmware, server, id)
TO 'drives.parquet' (FORMAT parquet, COMPRESSION zstd);

-- Of many nights: FROM 'drives-*.parquet', and "taken" tells them apart.
SELECT server, id, serial, firmware, media_errors
FROM 'drives.parquet' WHERE media_errors > 0 ORDER BY media_errors DESC, server, id;

// run_duckdb.mjs FILE.sql: runs its statements in DuckDB, in the current folder; prints the last answer
// as JSON.
import { readFileSync } from "node:fs";
import { DuckDBInstance } from "@duckdb/node-api";

const connection = await (await DuckDBInstance.create(":memory:")).connect();
const answer = await connection.runAndReadAll(readFileSync(process.argv[2], "utf8"));
console.log(JSON.stringify({ types: answer.columnTypes().map(String), rows: answer.getRowsJson() }));

// Prints the answer of DuckDB to a statement, as JSON: node duckdb.mjs STATEMENT
// SPDX-License-Identifier: Apache-2.0
import { DuckDBInstance } from '@duckdb/node-api';

const connection = await (await DuckDBInstance.create()).connect();
const answer = await connection.runAndReadAll(process.argv[2]);
process.stdout.write(JSON.stringify(answer.getRowObjectsJson()));

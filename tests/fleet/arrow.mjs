// Prints what apache-arrow and polars read of a stream, as JSON: node arrow.mjs FILE
// Integers of 64 bits are texts; polars writes its rows itself.
// SPDX-License-Identifier: Apache-2.0
import { readFileSync } from 'node:fs';
import { tableFromIPC } from 'apache-arrow';
import pl from 'nodejs-polars';

const bytes = readFileSync(process.argv[2]);
const table = tableFromIPC(bytes);
const frame = pl.readIPCStream(bytes);
const fields = table.schema.fields.map((field) => ({
  name: field.name,
  type: String(field.type),
  cimType: field.metadata.get('cim:type') ?? null,
}));
const rows = Array.from(table, (row) => fields.map((field, index) => row[table.schema.fields[index].name]));
const plain = (key, value) =>
  typeof value === 'bigint' ? String(value) : value && typeof value.toArray === 'function' ? [...value] : value;
const shown = { fields, rows, polarsTypes: frame.dtypes.map(String), polars: frame.writeJSON({ format: 'json' }).toString() };
process.stdout.write(JSON.stringify(shown, plain));

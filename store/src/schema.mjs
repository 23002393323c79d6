import { readFileSync, readdirSync } from 'node:fs';
import { basename, join } from 'node:path';
import { pathToFileURL } from 'node:url';

import { assertValidSchema, buildSchema } from 'graphql';

function rootFieldNames(schema) {
  return [schema.getQueryType(), schema.getMutationType()].flatMap((type) =>
    type ? Object.keys(type.getFields()) : [],
  );
}

async function loadOperations(folder) {
  const files = readdirSync(folder).filter((file) => file.endsWith('.mjs'));
  const modules = await Promise.all(
    files.map((file) => import(pathToFileURL(join(folder, file)).href)),
  );
  return Object.fromEntries(
    files.map((file, index) => [basename(file, '.mjs'), modules[index].default]),
  );
}

// Reads the schema and the folder of operations: one file per root field, named like it, whose
// default export is its resolver `(arguments, context)`. A field without a file, or a file without
// a field, stops the start.
export async function loadSchema(schemaPath, operationsFolder) {
  const schema = buildSchema(readFileSync(schemaPath, 'utf8'));
  assertValidSchema(schema);
  const operations = await loadOperations(operationsFolder);
  const fields = rootFieldNames(schema);
  for (const field of fields) {
    if (!operations[field]) throw new Error(`${operationsFolder} has no operation ${field}.mjs`);
  }
  for (const name of Object.keys(operations)) {
    if (!fields.includes(name)) throw new Error(`${schemaPath} has no root field ${name}`);
  }
  return { schema, operations };
}

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

// Reads the schema and the folder of operations. Each root field has a file with the same name,
// whose default export is its resolver `(arguments, context)`. Throws for a field without a file
// and for a file without a field.
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

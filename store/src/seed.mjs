import { readFileSync } from 'node:fs';

function requireThat(condition, path, problem) {
  if (!condition) throw new Error(`seed file ${path}: ${problem}`);
}

// Reads the seed file and checks the members that the service uses.
export function loadSeed(path) {
  const seed = JSON.parse(readFileSync(path, 'utf8'));
  requireThat(Array.isArray(seed.stores), path, '"stores" must be a list');
  const codes = seed.stores.map((store) => store.storeCode);
  requireThat(new Set(codes).size === codes.length, path, 'every "storeCode" must be unique');
  requireThat(
    seed.stores.some((store) => store.storeCode === seed.defaultStoreCode && store.status),
    path,
    '"defaultStoreCode" must name an open store',
  );
  return seed;
}

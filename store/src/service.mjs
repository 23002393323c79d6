// Assembles the service and opens its two ports. Add token readers, services for operations and
// pages here. Operations are found by their file names.
import { mkdirSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

import { integrationTokenReader } from './callers.mjs';
import { loadCatalogue } from './catalogue.mjs';
import { prepareCertificates } from './certificates.mjs';
import { createControlServer } from './controlServer.mjs';
import { createCustomerServices, customerTokenReader } from './customerServices.mjs';
import { FaultList } from './faults.mjs';
import { createFrame } from './frame.mjs';
import { RequestLog } from './requestLog.mjs';
import { defaultPasswordCost } from './passwords.mjs';
import { createPictures, pictureFolder } from './pictures.mjs';
import { loadSchema } from './schema.mjs';
import { loadSeed } from './seed.mjs';
import { checkSettings, defaultSettings } from './settings.mjs';
import { loadCacheSalt } from './stateFile.mjs';
import { createStoreServer } from './storeServer.mjs';
import { createStorefront } from './storefront.mjs';

const loopback = '127.0.0.1';
const besideThisFolder = (name) => fileURLToPath(new URL(`../${name}`, import.meta.url));

function listen(server, port) {
  return new Promise((resolve, reject) => {
    server.once('error', (error) => {
      const taken = error.code === 'EADDRINUSE';
      reject(taken ? new Error(`port ${port} is in use; choose another port, or 0`) : error);
    });
    server.listen(port, loopback, () => resolve(server.address().port));
  });
}

// Closes a server without waiting for its clients.
function trackConnections(server, event) {
  const sockets = new Set();
  server.on(event, (socket) => {
    sockets.add(socket);
    socket.once('close', () => sockets.delete(socket));
  });
  return () =>
    new Promise((resolve) => {
      server.close(resolve);
      for (const socket of sockets) socket.destroy();
    });
}

// Starts the service with its state in `stateFolder`. Port 0 selects a free port. Resolves when
// both ports are open; `close()` ends every connection.
export async function startService({
  stateFolder,
  port = 0,
  controlPort = 0,
  line = 'new',
  passwordCost = defaultPasswordCost,
}) {
  const settings = { ...defaultSettings, ...checkSettings({ line }) };
  mkdirSync(stateFolder, { recursive: true, mode: 0o700 });
  const certificates = prepareCertificates(stateFolder);
  const seed = loadSeed(besideThisFolder('seed.json'));
  const catalogue = loadCatalogue(besideThisFolder('catalogue.json'), seed);
  const { schema, operations } = await loadSchema(
    besideThisFolder('schema.graphql'),
    besideThisFolder('operations'),
  );

  const clock = () => Date.now() + settings.clockOffsetSeconds * 1000;
  const customerServices = createCustomerServices({
    stateFolder,
    settings,
    passwordCost,
    clock,
  });
  const { customers, sessions } = customerServices;

  const faults = new FaultList();
  const requestLog = new RequestLog();
  const answerGraphql = createFrame({
    schema,
    operations,
    services: { seed, catalogue, ...customerServices },
    tokenReaders: [integrationTokenReader(seed), customerTokenReader(sessions)],
    settings,
    salt: loadCacheSalt(stateFolder),
  });
  const routes = [
    { matches: (path) => path === '/graphql', answer: answerGraphql },
    { matches: (path) => path.startsWith(pictureFolder), answer: createPictures(catalogue) },
    { matches: () => true, answer: createStorefront({ seed, customers, sessions }) },
  ];

  const store = createStoreServer({ certificates, routes, faults, requestLog });
  const control = createControlServer({ settings, faults, requestLog });
  const closeStore = trackConnections(store, 'connection');
  const closeControl = trackConnections(control, 'connection');
  const ports = { port: await listen(store, port), controlPort: null };
  try {
    ports.controlPort = await listen(control, controlPort);
  } catch (error) {
    await closeStore();
    throw error;
  }
  return {
    ...ports,
    url: `https://${loopback}:${ports.port}/graphql`,
    controlUrl: `http://${loopback}:${ports.controlPort}`,
    authorityPath: certificates.authorityPath,
    close: () => Promise.all([closeStore(), closeControl()]),
  };
}

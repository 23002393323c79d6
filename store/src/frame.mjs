// The steps that all operations share, from the request to the response of the platform. An
// operation gets only its arguments and a context, and returns or throws.
import { GraphQLError } from 'graphql';
import { createHandler } from 'graphql-http';

import { cacheId } from './cacheId.mjs';
import { guest, identifyCaller } from './callers.mjs';
import { lines } from './lines.mjs';
import { page, pages } from './pages.mjs';
import { phpJson } from './phpJson.mjs';
import { Category, Reason, Refusal } from './platformErrors.mjs';
import { checkCurrency, describeOperation, findStore, readParameters } from './requestParts.mjs';
import { answerHeaders } from './responseHeaders.mjs';

// Hides unexpected errors from the client, as the platform does.
function formatError(error) {
  const cause = error.originalError;
  if (!cause || cause instanceof GraphQLError) return error;
  console.error(cause);
  return new GraphQLError('Internal server error', { nodes: error.nodes, path: error.path });
}

function refusalResult({ message, category }) {
  return { errors: [category ? { message, extensions: { category } } : { message }] };
}

// The first error with a category determines the status.
function statusOfResult(result, line) {
  const categorised = result.errors?.find((error) => error.extensions?.category);
  return line.categoryStatus[categorised?.extensions.category] ?? 200;
}

function shapeResult(result, line) {
  if (!result.errors) return result;
  const state = { executed: 'data' in result };
  return { ...result, errors: result.errors.map((error) => line.shapeError(error, state)) };
}

function isCacheIdSent(request, line, settings) {
  if (!settings.cacheIdHeader) return false;
  return line.sendsCacheIdForMutations || !request.body.includes('mutation');
}

// Makes the function `(request) => response`. A request has `method`, `url`, `hostName`, `headers`
// (names in lower case) and `body` (a Buffer). A response has `status`, `headers` (pairs), `body`
// (text, bytes or null) and `operation` (the requested root field, or null).
export function createFrame({ schema, operations, services, tokenReaders, settings, salt }) {
  const execute = createHandler({
    schema,
    rootValue: operations,
    context: (request) => request.context,
    formatError,
  });

  async function run(parameters, context) {
    const [text] = await execute({
      method: 'POST',
      url: '/graphql',
      headers: { accept: 'application/json', 'content-type': 'application/json' },
      body: parameters,
      context,
    });
    return JSON.parse(text);
  }

  async function resultOf(request, line, exchange) {
    const { context } = exchange;
    const parameters = readParameters(request);
    const operation = describeOperation(parameters);
    exchange.operation = operation.name;
    context.store = findStore(request.headers, services.seed);
    checkCurrency(request.headers, context.store);
    context.caller = await identifyCaller(request.headers.authorization, tokenReaders, line);
    if (operation.kind === 'mutation' && request.method === 'GET') {
      throw new Refusal(
        Reason.MutationOverGet,
        'Mutation requests allowed only for POST requests',
        Category.Input,
      );
    }
    const result = await run(parameters, context);
    const status = operation.parses
      ? statusOfResult(result, line)
      : line.refusalStatus[Reason.Syntax];
    return { status, result };
  }

  function refused(error, line) {
    const refusal =
      error instanceof Refusal ? error : new Refusal(Reason.Unexpected, 'Internal server error');
    if (refusal !== error) console.error(error);
    const isPage =
      refusal.reason === Reason.UnreadableBody && line.answersUnreadableBodiesWithAPage;
    const status = line.refusalStatus[refusal.reason];
    return isPage
      ? { status, text: pages.internalError }
      : { status, result: refusalResult(refusal) };
  }

  async function answerOperation(request) {
    const line = lines[settings.line];
    const store = services.seed.stores.find(
      ({ storeCode }) => storeCode === services.seed.defaultStoreCode,
    );
    const context = { ...services, settings, line, request, store, caller: guest };
    const exchange = { context, operation: null };
    const outcome = await resultOf(request, line, exchange).catch((error) => refused(error, line));
    if (outcome.text) return page(outcome.status, outcome.text);
    const id = isCacheIdSent(request, line, settings) ? cacheId({ ...context, salt }) : null;
    return {
      status: outcome.status,
      headers: answerHeaders({ request, line, settings, cacheId: id }),
      body: phpJson(shapeResult(outcome.result, line), { escapesMarkup: line.escapesMarkupInJson }),
      operation: exchange.operation,
    };
  }

  return async function answer(request) {
    if (request.method === 'OPTIONS') {
      return { status: 204, headers: [], body: null, operation: null };
    }
    if (!['GET', 'POST'].includes(request.method)) return page(405, pages.notAllowed);
    return answerOperation(request);
  };
}

const keptRequests = 200;

function headerPairs(rawHeaders) {
  const pairs = [];
  for (let index = 0; index < rawHeaders.length; index += 2) {
    pairs.push([rawHeaders[index], rawHeaders[index + 1]]);
  }
  return pairs;
}

// The last requests, byte for byte as received, for tests.
export class RequestLog {
  #requests = [];
  #count = 0;

  // `exchange` has the connection (the client's port), the requested operation and the status of
  // the response.
  add(request, body, exchange) {
    this.#count += 1;
    this.#requests.push({
      number: this.#count,
      httpVersion: request.httpVersion,
      method: request.method,
      url: request.url,
      headers: headerPairs(request.rawHeaders),
      body: body.toString('utf8'),
      bodyBase64: body.toString('base64'),
      ...exchange,
    });
    if (this.#requests.length > keptRequests) this.#requests.shift();
  }

  clear() {
    this.#requests = [];
  }

  list() {
    return [...this.#requests];
  }
}

import { GraphQLError } from 'graphql';

export const Category = Object.freeze({
  Input: 'graphql-input',
  Authentication: 'graphql-authentication',
  Authorization: 'graphql-authorization',
  NoSuchEntity: 'graphql-no-such-entity',
  AlreadyExists: 'graphql-already-exists',
});

// Why a request was refused before its execution began. Each line of the platform gives every
// reason a status (lines.mjs).
export const Reason = Object.freeze({
  ContentType: 'contentType',
  UnreadableBody: 'unreadableBody',
  Store: 'store',
  Currency: 'currency',
  Token: 'token',
  Syntax: 'syntax',
  MutationOverGet: 'mutationOverGet',
  Unexpected: 'unexpected',
});

// Thrown by an operation: the response has the message and the category, and the operation's root
// field becomes null.
export class OperationError extends GraphQLError {
  constructor(message, category) {
    super(message, { extensions: { category } });
  }
}

export function inputError(message) {
  return new OperationError(message, Category.Input);
}

// Thrown before execution: the response has only "errors".
export class Refusal extends Error {
  constructor(reason, message, category) {
    super(message);
    this.reason = reason;
    this.category = category;
  }
}

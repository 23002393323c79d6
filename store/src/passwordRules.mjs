// The platform's rules for a new password, in the order in which it checks them.
import { inputError } from './platformErrors.mjs';

const minimumCharacters = 8;
const maximumCharacters = 256;
const minimumClasses = 3;
const classes = [/[a-z]/, /[A-Z]/, /[0-9]/, /[^a-zA-Z0-9]/];

function complaint(password, email) {
  const characters = [...password].length;
  if (characters > maximumCharacters) {
    return `Please enter a password with at most ${maximumCharacters} characters.`;
  }
  if (characters < minimumCharacters) {
    return (
      `The password needs at least ${minimumCharacters} characters. ` +
      'Create a new password and try again.'
    );
  }
  if (password.trim() !== password) {
    return "The password can't begin or end with a space. Verify the password and try again.";
  }
  if (classes.filter((pattern) => pattern.test(password)).length < minimumClasses) {
    return (
      `Minimum of different classes of characters in password is ${minimumClasses}. ` +
      'Classes of characters: Lower Case, Upper Case, Digits, Special Characters.'
    );
  }
  if (password.toLowerCase() === email.toLowerCase()) {
    return (
      "The password can't be the same as the email address. " +
      'Create a new password and try again.'
    );
  }
  return null;
}

export function checkNewPassword(password, email) {
  const message = complaint(password, email);
  if (message) throw inputError(message);
}

// docs/troubleshooting.md and the product know the same messages.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { folders, sourcesOf, textOf } from '../support/sources.mjs';
import { productMessages } from './product_messages.mjs';

const document = textOf('docs/troubleshooting.md');
const sections = document.split(/^### /m).slice(1);
/** The fixed beginning of each heading. */
const headings = sections.map((section) => section.match(/^`([^`\n]+)`/)?.[1]);

// What only the application says, to a client that breaks the protocol.
const forDevelopers = (message) => message.startsWith('request ');

test('the product has messages', () => {
  assert.ok(productMessages().length > 30);
});

test('every message of the product has a heading', () => {
  const missing = productMessages().filter(({ message }) => !forDevelopers(message) && !headings.includes(message));
  assert.deepEqual(missing, []);
});

test('what the application says to other clients is in the protocol', () => {
  const protocol = textOf('docs/bridge-protocol.md');
  const messages = productMessages().filter(({ message }) => forDevelopers(message));
  assert.equal(messages.length, 3);
  for (const { message } of messages) assert.ok(protocol.includes(`\`${message}\``), message);
});

test('every heading is a message of the product', () => {
  // Adjacent literals are one.
  const sources = folders.flatMap(sourcesOf).map(textOf).join('\n').replace(/"\s*"/g, '');
  for (const heading of headings) assert.ok(heading && sources.includes(heading), `no source says: ${heading}`);
});

test('no message has two headings', () => {
  assert.equal(new Set(headings).size, headings.length);
});

test('every message has a cause and a remedy', () => {
  for (const [index, section] of sections.entries()) {
    assert.match(section, /\*\*Cause:\*\* \S/, headings[index]);
    assert.match(section, /^\*\*Remedy:\*\* \S/m, headings[index]);
  }
});

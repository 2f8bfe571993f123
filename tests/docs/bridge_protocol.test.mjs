// docs/bridge-protocol.md says what the real program does: its example exchange is run, and so is each of its codes.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import fs from 'node:fs';
import net from 'node:net';
import path from 'node:path';
import { text } from 'node:stream/consumers';
import { after, test } from 'node:test';

import { PrivateHome } from '../support/private_home.mjs';
import { programUnderTest } from '../support/program.mjs';
import { textOf } from '../support/sources.mjs';

const document = textOf('docs/bridge-protocol.md');
const program = programUnderTest();
const home = new PrivateHome();
after(() => home.remove());

/** The one-line examples of this kind, in the order of the document. */
const examples = (kind) =>
  [...document.matchAll(new RegExp(`^\`\`\`json ${kind}\n(.*)\n\`\`\`$`, 'gm'))].map((match) => match[1]);

/** Starts the program, sends one line, and plays the application that gives `answer` to whatever it is sent. */
async function exchange(line, answer) {
  fs.mkdirSync(path.dirname(home.socket), { recursive: true });
  let request = '';
  const application = net.createServer({ allowHalfOpen: true }, (connection) => {
    connection.setEncoding('utf8').on('data', (bytes) => (request += bytes));
    connection.on('end', () => connection.end(answer));
    // A server that has read too much goes away.
    connection.on('error', () => {});
  });
  await new Promise((resolve) => application.listen(home.socket, resolve));
  const server = spawn(program, ['--agent', 'editor'], {
    env: home.environment(program),
    cwd: '/',
    stdio: ['pipe', 'pipe', 'inherit'],
  });
  server.stdin.end(line);
  const response = await text(server.stdout);
  await new Promise((resolve) => application.close(resolve));
  return { request, response };
}

const [agentRequest] = examples('agent-request');
const [request] = examples('request');
const responses = examples('response');
const agentResponses = examples('agent-response');

test('the document has an example of a success and one of an error', () => {
  assert.equal(responses.length, 2);
  assert.equal(agentResponses.length, 2);
});

for (const [index, response] of responses.entries()) {
  test(`example ${index + 1} is what happens`, async () => {
    const seen = await exchange(`${agentRequest}\n`, `${response}\n`);
    assert.equal(seen.request, `${request}\n`);
    assert.equal(seen.response, `${agentResponses[index]}\n`);
  });
}

const codeRows = [...document.matchAll(/^\| `([a-z_]+)` \| (-\d+) \|/gm)];
const codes = codeRows.map(([, code, number]) => [code, Number(number)]);

test('the document has every code of the protocol', () => {
  const header = textOf('protocol/mcp_mutation.h');
  const known = [...header.matchAll(/\/\/\/< "([a-z_]+)"/g)].map((match) => match[1]);
  assert.equal(known.length, 8);
  assert.deepEqual(codes.map(([code]) => code), known);
});

for (const [code, number] of codes) {
  test(`${code} becomes ${number}`, async () => {
    const { response } = await exchange(`${agentRequest}\n`, JSON.stringify({ ok: false, error: { code } }));
    assert.deepEqual(JSON.parse(response).error, { code: number, message: 'Unknown error', data: { code } });
  });
}

test('the nesting of a response may be as deep as the document says', async () => {
  const levels = Number(document.match(/nesting of a response \| (\d+) levels/)[1]);
  const answerOf = (depth) => `{"ok":true,"result":${'['.repeat(depth - 1)}${']'.repeat(depth - 1)}}\n`;
  const fits = await exchange(`${agentRequest}\n`, answerOf(levels));
  assert.equal(JSON.parse(fits.response).result.isError, false);
  const tooDeep = await exchange(`${agentRequest}\n`, answerOf(levels + 1));
  assert.equal(
    JSON.parse(tooDeep.response).error.message,
    'Malformed response from Orvane: response was not a JSON object',
  );
});

test('the limit of a response is what the document says', async () => {
  const [, limit] = document.match(/response, line feed included \| ([\d,]+) bytes/);
  const answerOf = (bytes) => {
    const frame = '{"ok":true,"result":{"x":""}}\n';
    return frame.replace('""', () => `"${'a'.repeat(bytes - frame.length)}"`);
  };
  const bytes = Number(limit.replaceAll(',', ''));
  const fits = await exchange(`${agentRequest}\n`, answerOf(bytes));
  assert.equal(JSON.parse(fits.response).result.isError, false);
  const tooLarge = await exchange(`${agentRequest}\n`, answerOf(bytes + 1));
  assert.equal(JSON.parse(tooLarge.response).error.message, 'response too large (>1 MiB)');
});

// The stand-in as a process, and what an agent sees of an application that misbehaves.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import net from 'node:net';
import path from 'node:path';
import { after, test } from 'node:test';

import { PrivateHome } from '../support/private_home.mjs';
import { programUnderTest, standinUnderTest } from '../support/program.mjs';
import { Standin } from '../support/standin.mjs';

const program = programUnderTest();
const home = new PrivateHome();
after(() => home.remove());

/** The stand-in, started with these parameters. */
const start = (...parameters) => new Standin(standinUnderTest(), home, ...parameters);

/** The server's answers to calls of `methods`, one after another, in one process. */
async function answers(methods) {
  const server = spawn(program, [], { env: home.environment(program), stdio: ['pipe', 'pipe', 'inherit'] });
  let output = '';
  server.stdout.on('data', (data) => (output += data));
  methods.forEach((name, id) => {
    server.stdin.write(JSON.stringify({ jsonrpc: '2.0', id, method: 'tools/call', params: { name } }) + '\n');
  });
  server.stdin.end();
  const [status] = await once(server, 'close');
  assert.equal(status, 0);
  const messages = output
    .split('\n')
    .slice(0, -1)
    .map((line) => JSON.parse(line));
  assert.deepEqual(
    messages.map((message) => message.id),
    methods.map((_, id) => id),
  );
  return messages;
}

/** Runs `body` while a stand-in follows `script`. */
async function withScript(script, body) {
  const file = path.join(home.scratch('script'), 'script.json');
  fs.writeFileSync(file, JSON.stringify(script));
  const standin = await start('--script', file).listening();
  try {
    await body();
  } finally {
    assert.equal(await standin.end(), 0);
  }
}

test('its socket is for its user alone, and goes when it ends', async () => {
  for (const signal of ['SIGTERM', 'SIGINT']) {
    const standin = await start().listening();
    assert.equal(fs.statSync(home.socket).mode & 0o777, 0o600);
    assert.equal(standin.output, `orvane-standin: listening at ${home.socket}\n`);
    assert.equal(await standin.end(signal), 0);
    assert.equal(fs.existsSync(home.socket), false);
  }
});

test('it refuses to start where something listens, and leaves that alone', async () => {
  const first = await start().listening();
  const second = start();
  assert.notEqual(await second.ended, 0);
  assert.match(second.diagnostics, /already listens/);
  assert.equal((await answers(['slate_open']))[0].result.isError, false);
  assert.equal(await first.end(), 0);
});

test('it takes the place of a socket that nobody listens on', async () => {
  const standin = await start().listening();
  await standin.end('SIGKILL');
  assert.equal(fs.existsSync(home.socket), true);
  const [stale] = await answers(['slate_open']);
  assert.equal(stale.error.code, -32001);
  const next = await start().listening();
  assert.equal((await answers(['slate_open']))[0].result.isError, false);
  assert.equal(await next.end(), 0);
});

test('it outlives clients that vanish', async () => {
  const standin = await start().listening();
  for (let i = 0; i < 50; ++i) {
    const client = net.createConnection(home.socket);
    await once(client, 'connect');
    client.write('{"method":"get_insights"');
    client.destroy();
  }
  assert.equal((await answers(['get_insights']))[0].result.isError, false);
  assert.equal(await standin.end(), 0);
});

test('an agent sees each misbehaviour as its own error, and the next call works', async () => {
  const script = {
    get_insights: [{ close: true }, { malformed: true }, { partialBytes: 10 }, { answerBytes: 1048577 }],
    get_slate: [{ answerBytes: 1048576 }, { delaySeconds: 0.3 }, { raw: '[]' }, { result: 5 }],
  };
  await withScript(script, async () => {
    const insights = await answers(Array(5).fill('get_insights'));
    for (const cut of insights.slice(0, 3)) {
      assert.deepEqual(cut.error, {
        code: -32002,
        message: 'Malformed response from Orvane: response was not a JSON object',
      });
    }
    assert.deepEqual(insights[3].error, { code: -32000, message: 'response too large (>1 MiB)' });
    assert.equal(insights[4].result.isError, false);

    const slate = await answers(Array(5).fill('get_slate'));
    assert.equal(slate[0].result.isError, false);
    assert.equal(slate[1].result.isError, false);
    assert.equal(slate[2].error.code, -32002);
    assert.equal(slate[3].error.code, -32603);
    assert.equal(slate[4].result.isError, false);
  });
});

test('every error code of the application reaches the agent as its own', async () => {
  const codes = {
    validation_failed: -32602,
    slot_budget_full: -32011,
    consent_denied: -32012,
    consent_pending_timeout: -32013,
    too_many_requests: -32014,
    peer_not_permitted: -32015,
    app_not_running: -32001,
    internal_error: -32603,
    something_new: -32603,
  };
  const data = { code: 'x', n: 1 };
  const errors = Object.keys(codes).map((code) => ({ error: { code, message: `says ${code}`, data } }));
  await withScript({ speak: errors }, async () => {
    const messages = await answers(Array(errors.length).fill('speak'));
    Object.entries(codes).forEach(([code, number], index) => {
      const known = code === 'something_new' ? 'internal_error' : code;
      assert.deepEqual(messages[index].error, { code: number, message: `says ${code}`, data: { code: known, n: 1 } });
    });
  });
});

test('a refused and an unanswered question for consent', async () => {
  for (const [answer, code] of [
    ['deny', -32012],
    ['timeout', -32013],
  ]) {
    const standin = await start('--consent', answer, '--meeting-consent', answer).listening();
    const [change, meeting] = await answers(['set_active_persona', 'list_meetings']);
    assert.equal(change.error.code, code);
    assert.equal(meeting.error.code, code);
    assert.equal(await standin.end(), 0);
  }
});

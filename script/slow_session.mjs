// Sends a session of several requests one byte at a time, over a pipe and over a socket pair, and looks at what the
// server does between the bytes.
//
//   node script/slow_session.mjs SERVER PAUSE_IN_MILLISECONDS
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import path from 'node:path';
import { setTimeout as pause } from 'node:timers/promises';

import { PrivateHome } from '../tests/support/private_home.mjs';

const server = path.resolve(process.argv[2]);
const pauseMilliseconds = Number(process.argv[3]);

// A wait for a byte and the wait for the next one; and what it takes to look at it.
const limits = { switchesPerByte: 4, processorMillisecondsPerByte: 0.5 };

const lines = [
  '{"id":2,"method":"ping"}',
  '{"id":3,"method":"tools/call","params":{"name":"get_insights"}}',
  'nonsense',
  '{"id":4,"method":"tools/call","params":{"name":"read_preferences"}}',
  '{"id":5,"method":"none"}',
  '{"id":6,"method":"ping"}',
];
const answers = [
  [2, undefined],
  [3, -32001],
  [null, -32700],
  [4, undefined],
  [5, -32601],
  [6, undefined],
];

// Node gives its children socket pairs; cat makes a pipe of one.
const channels = {
  'socket pair': [server],
  pipe: ['/bin/bash', '-c', 'exec "$0" < <(exec cat)', server],
};

const threads = (pid) => fs.readdirSync(`/proc/${pid}/task`).map((thread) => `/proc/${pid}/task/${thread}`);
const sum = (numbers) => numbers.reduce((total, number) => total + number, 0);
const processorMilliseconds = (pid) =>
  sum(threads(pid).map((thread) => Number(fs.readFileSync(`${thread}/schedstat`, 'utf8').split(' ')[0]))) / 1e6;
const switches = (pid) =>
  sum(threads(pid).map((thread) =>
    Number(/^voluntary_ctxt_switches:\s+(\d+)/m.exec(fs.readFileSync(`${thread}/status`, 'utf8'))[1])));

async function slowSession(home, channel) {
  const [program, ...args] = channels[channel];
  const child = spawn(program, args, {
    env: { ...home.environment(server), ORV_MCP_AUDIBLE: '0' },
    cwd: '/',
    stdio: ['pipe', 'pipe', 'inherit'],
  });
  const seen = [];
  let rest = '';
  let wake = () => {};
  child.stdout.setEncoding('utf8').on('data', (text) => {
    const whole = (rest + text).split('\n');
    rest = whole.pop();
    seen.push(...whole);
    wake();
  });
  const awaitAnswers = async (count) => {
    while (seen.length < count) await new Promise((resolve) => { wake = resolve; });
  };
  child.stdin.write('{"id":1,"method":"initialize"}\n');
  await awaitAnswers(1);
  await pause(200);

  const before = { processor: processorMilliseconds(child.pid), switches: switches(child.pid) };
  let bytes = 0;
  let early = 0;
  for (const [index, line] of lines.entries()) {
    for (const byte of `${line}\n`) {
      if (seen.length !== 1 + index) early += 1;
      child.stdin.write(byte);
      bytes += 1;
      await pause(pauseMilliseconds);
    }
    await awaitAnswers(2 + index);
  }
  const taken = {
    processor: processorMilliseconds(child.pid) - before.processor,
    switches: switches(child.pid) - before.switches,
  };
  const ended = once(child, 'exit');
  child.stdin.end();
  const [status] = await ended;

  const received = seen.slice(1).map((line) => JSON.parse(line)).map(({ id, error }) => [id, error?.code]);
  const isGood =
    status === 0 && early === 0 && rest === '' && JSON.stringify(received) === JSON.stringify(answers) &&
    taken.switches <= limits.switchesPerByte * bytes &&
    taken.processor <= limits.processorMillisecondsPerByte * bytes;
  console.log(`${channel}, ${pauseMilliseconds} ms after each byte: ${bytes} bytes, ${received.length} answers, ` +
    `exit status ${status}; processor time ${taken.processor.toFixed(1)} ms, waits ${taken.switches}` +
    `${isGood ? '' : `: FAILED, answers ${JSON.stringify(received)}, ${early} of them early`}`);
  return isGood;
}

async function run(channel) {
  const home = new PrivateHome();
  try {
    return await slowSession(home, channel);
  } finally {
    home.remove();
  }
}

const outcomes = await Promise.all(Object.keys(channels).map(run));
if (outcomes.includes(false)) process.exit(1);

// Sends REQUESTS requests of a realistic mix through one server process and measures it.
//
//   node script/soak_session.mjs SERVER STANDIN REQUESTS
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import net from 'node:net';
import path from 'node:path';
import { setTimeout as pause } from 'node:timers/promises';

import { PrivateHome } from '../tests/support/private_home.mjs';
import { Standin } from '../tests/support/standin.mjs';

const [server, standinProgram] = process.argv.slice(2, 4).map((file) => path.resolve(file));
const total = Number(process.argv[4]);

const requestsInFlight = 64;  // requests that wait for their answers at one time
const idleSeconds = 5;
const limits = { memoryGrowth: 0.01, idleTicks: 0, idleSwitches: 0, exitMilliseconds: 100 };

const call = (name, args = {}) => ({ method: 'tools/call', params: { name, arguments: args } });
// One round of an agent's day; the notes are read more often than written.
const mix = [
  { method: 'ping' },
  call('current_settings'),
  call('list_dictionary'),
  call('set_input_device', { name: 'USB Mic' }),
  call('list_augments'),
  call('get_insights'),
  call('orvane_version'),
  call('list_meetings', { limit: 3 }),
  call('read_preferences'),
  call('computer_inspect', { target: 'Notes' }),
  { method: 'resources/templates/list' },
  call('search_meetings', { query: 'pricing' }),
  { method: 'no/such/method' },
  call('no_such_tool'),
  call('slate_open'),
  call('list_personas'),
  { method: 'tools/list' },
  call('get_meeting', { id: 'none' }),
  call('remember_preference', { note: '' }),
  { method: 'initialize', params: {} },
];

const status = (pid, key) =>
  Number(new RegExp(`^${key}:\\s+(\\d+)`, 'm').exec(fs.readFileSync(`/proc/${pid}/status`, 'utf8'))[1]);
const residentKiB = (pid) => status(pid, 'VmRSS');
const switches = (pid) => status(pid, 'voluntary_ctxt_switches') + status(pid, 'nonvoluntary_ctxt_switches');
const descriptors = (pid) => fs.readdirSync(`/proc/${pid}/fd`).length;
function processorTicks(pid) {
  const fields = fs.readFileSync(`/proc/${pid}/stat`, 'utf8').split(') ')[1].split(' ');
  return Number(fields[11]) + Number(fields[12]);
}

class Session {
  sent = 0;
  answered = 0;
  results = 0;
  errors = 0;
  #rest = '';
  #wake = () => {};
  #failure;

  constructor(child) {
    this.child = child;
    child.stdout.setEncoding('utf8').on('data', (text) => {
      try {
        this.#take(text);
      } catch (error) {
        this.#fail(error);
      }
    });
    child.stdin.on('error', (error) => this.#fail(error));
    child.once('close', (status, signal) => this.#fail(new Error(`the server ended: ${signal ?? `status ${status}`}`)));
  }

  #fail(error) {
    this.#failure ??= error;
    this.#wake();
  }

  #take(text) {
    const lines = (this.#rest + text).split('\n');
    this.#rest = lines.pop();
    for (const line of lines) {
      const answer = JSON.parse(line);
      if (answer.id !== this.answered || answer.jsonrpc !== '2.0' || 'result' in answer === 'error' in answer) {
        throw new Error(`not the answer to request ${this.answered}: ${line.slice(0, 300)}`);
      }
      this.answered += 1;
      if ('error' in answer) this.errors += 1;
      else this.results += 1;
    }
    this.#wake();
  }

  /** Sends requests of the mix until `count` were sent in all, and waits for every answer. */
  async runTo(count) {
    while (this.answered < count) {
      if (this.#failure) throw this.#failure;
      let text = '';
      while (this.sent < count && this.sent - this.answered < requestsInFlight) {
        text += `${JSON.stringify({ jsonrpc: '2.0', id: this.sent, ...mix[this.sent % mix.length] })}\n`;
        this.sent += 1;
        // Nobody answers a notification.
        if (this.sent % 100 === 0) text += '{"jsonrpc":"2.0","method":"notifications/progress"}\n';
      }
      if (text !== '') this.child.stdin.write(text);
      await new Promise((resolve) => { this.#wake = resolve; });
    }
  }
}

const startServer = (home) => spawn(server, [], {
  env: { ...home.environment(server), ORV_MCP_AUDIBLE: '0' },
  cwd: '/',
  stdio: ['pipe', 'pipe', 'inherit'],
});

/**
 * Ends the input of a server that waits for an application's answer, and gives the answer later. Gives whether the
 * server waited and wrote the answer, and how long after the application's answer it ended.
 */
async function endDuringCall(home) {
  const application = net.createServer({ allowHalfOpen: true });
  fs.rmSync(home.socket, { force: true });
  application.listen(home.socket);
  const child = startServer(home);
  try {
    let output = '';
    child.stdout.setEncoding('utf8').on('data', (text) => { output += text; });
    child.stdin.write(`${JSON.stringify({ jsonrpc: '2.0', id: 1, ...call('get_insights') })}\n`);
    const [connection] = await once(application, 'connection');
    await once(connection.resume(), 'end');
    child.stdin.end();
    await pause(500);
    const hasWaited = child.exitCode === null && child.signalCode === null;
    const ended = once(child, 'close');
    const answered = process.hrtime.bigint();
    connection.end('{"ok":true,"result":{}}\n');
    const [status] = await ended;
    const milliseconds = Number(process.hrtime.bigint() - answered) / 1e6;
    const isAnswered = hasWaited && status === 0 && output.endsWith('\n') && JSON.parse(output).result !== undefined;
    return { isAnswered, milliseconds };
  } finally {
    child.kill();
    application.close();
  }
}

/** The session from the first request to the end of the process, with what was measured on the way. */
async function soak(home) {
  const child = startServer(home);
  try {
    return await measure(child, new Session(child));
  } finally {
    child.kill();
  }
}

async function measure(child, session) {
  const started = Date.now();
  await session.runTo(Math.floor(total / 10));
  const memoryBefore = residentKiB(child.pid);
  const descriptorsBefore = descriptors(child.pid);
  await session.runTo(total);
  const seconds = (Date.now() - started) / 1000;
  const memoryAfter = residentKiB(child.pid);

  const ticksBefore = processorTicks(child.pid);
  await pause(200);
  const switchesBefore = switches(child.pid);
  await pause(idleSeconds * 1000);
  const idleTicks = processorTicks(child.pid) - ticksBefore;
  const idleSwitches = switches(child.pid) - switchesBefore;
  const descriptorsAfter = descriptors(child.pid);

  // The end comes right behind a call whose audit record is still to be written.
  child.stdin.write(`${JSON.stringify({ jsonrpc: '2.0', id: session.sent, ...call('read_preferences') })}\n`);
  session.sent += 1;
  const ended = once(child, 'exit');
  const drained = once(child, 'close');
  const closed = process.hrtime.bigint();
  child.stdin.end();
  const [exitStatus] = await ended;
  const exitMilliseconds = Number(process.hrtime.bigint() - closed) / 1e6;
  await drained;
  return {
    session, seconds, memoryBefore, memoryAfter, descriptorsBefore, descriptorsAfter, idleTicks, idleSwitches,
    exitStatus, exitMilliseconds,
  };
}

/** How many records the audit log must hold: one for each call of a tool of the notes, and one for the last call. */
const expectedRecords = mix
  .map(({ params }, i) =>
    /_preferences?$/.test(params?.name ?? '') ? Math.floor((total - i + mix.length - 1) / mix.length) : 0)
  .reduce((sum, count) => sum + count, 1);

const failures = [];
function report(what, value, isGood, bound) {
  console.log(`${what.padEnd(44)} ${String(value).padStart(14)}${bound ? `   (${bound})` : ''}`);
  if (!isGood) failures.push(what);
}

function reportAll(seen, heldCall, records) {
  const { session } = seen;
  const growth = seen.memoryAfter / seen.memoryBefore - 1;
  report('requests', session.sent, true);
  report('answers, each in its place', session.answered, session.answered === session.sent);
  report('  results', session.results, session.results > 0);
  report('  errors', session.errors, session.errors > 0);
  report('requests per second', Math.round(total / seen.seconds), true);
  report('resident memory after a tenth, KiB', seen.memoryBefore, true);
  report('resident memory at the end, KiB', seen.memoryAfter, true);
  report('growth', `${(growth * 100).toFixed(2)} %`, growth < limits.memoryGrowth, 'under 1 %');
  report('descriptors after a tenth and at the end', `${seen.descriptorsBefore} ${seen.descriptorsAfter}`,
    seen.descriptorsBefore === seen.descriptorsAfter, 'equal');
  report(`processor ticks in ${idleSeconds} s idle`, seen.idleTicks, seen.idleTicks <= limits.idleTicks, 'none');
  report(`context switches in ${idleSeconds} s idle`, seen.idleSwitches,
    seen.idleSwitches <= limits.idleSwitches, 'none');
  report('exit status', seen.exitStatus, seen.exitStatus === 0);
  report('end of input to end of process, ms', seen.exitMilliseconds.toFixed(1),
    seen.exitMilliseconds < limits.exitMilliseconds, 'under 100');
  report('call under way at the end of input', heldCall.isAnswered ? 'answered' : 'lost', heldCall.isAnswered);
  report('its answer to end of process, ms', heldCall.milliseconds.toFixed(1),
    heldCall.milliseconds < limits.exitMilliseconds, 'under 100');
  report('audit records', records, records === expectedRecords, `${expectedRecords} expected`);
}

const home = new PrivateHome();
let standin;
try {
  home.write('settings.json', '{"assistantBackend":"local","inputDevice":1}');
  home.write('replacements.txt', '[replacements]\nomw -> on my way\n[fillers]\num, uh\n');
  home.write('augments/mine.md', '---\nname: Mine\n---\n');
  home.write('preferences.md', '- Keep answers short.\n');
  standin = await new Standin(standinProgram, home).listening();
  const seen = await soak(home);
  await standin.end();
  const heldCall = await endDuringCall(home);
  const auditLog = fs.readFileSync(path.join(home.configuration, 'mcp-context-reads.jsonl'), 'utf8');
  reportAll(seen, heldCall, auditLog.split('\n').length - 1);
} finally {
  await standin?.end();
  home.remove();
}
if (failures.length > 0) {
  console.error(`soak: FAILED: ${failures.join(', ')}`);
  process.exit(1);
}

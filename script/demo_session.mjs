// An agent's session with the server, printed as it goes: → what the agent sends, ← what it gets.
//
//   node script/demo_session.mjs SERVER STANDIN
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import path from 'node:path';
import readline from 'node:readline';

import { PrivateHome } from '../tests/support/private_home.mjs';
import { Standin } from '../tests/support/standin.mjs';

const [server, standinProgram] = process.argv.slice(2).map((file) => path.resolve(file));
const longestAnswer = 24;  // lines shown of one answer

// How the stand-in is told to behave as an application whose user said no.
const standinScript = {
  set_assistant_backend: { error: { code: 'consent_denied', message: 'The user declined this change.' } },
};

const home = new PrivateHome();
const colour = process.stdout.isTTY ? (code, text) => `\x1b[${code}m${text}\x1b[0m` : (code, text) => text;
const say = (text) => process.stdout.write(`${text}\n`);
const heading = (text) => say(`\n${colour(1, text)}`);

function writeSamples() {
  home.write(
    'settings.json',
    JSON.stringify({
      assistantBackend: 'claude',
      assistantEnabled: true,
      assistantTrigger: 'computer',
      contextMode: true,
      dictationHotkey: { name: 'rightCommand' },
      inputDevice: 1,
      sttModel: 'base-en',
      ttsEnabled: true,
      agentVoices: { claude: 'lumen' },
    }),
  );
  home.write(
    'replacements.txt',
    '# the words I keep saying\n[replacements]\nversion control, source control -> git\n' +
      '[fillers]\num, you know\n[corrections]\nscratch that\n[disabled]\nsmiley\n',
  );
  home.write(
    'augments/release-notes.md',
    '---\nname: Release Notes\ncategory: engineering\naxis: format\n---\nWrite as release notes.\n',
  );
  home.write('preferences.md', '- Keep answers short.\n');
}

function prettyAnswer(response) {
  let text;
  if (response.error) text = JSON.stringify(response.error, null, 2);
  else if (response.result?.content) text = response.result.content[0].text;
  else text = JSON.stringify(response.result, null, 2);
  const lines = text.split('\n');
  const more = lines.length - longestAnswer;
  return (more > 1 ? [...lines.slice(0, longestAnswer), `… ${more} more lines`] : lines).join('\n  ');
}

/** The agent's end of one running server. */
class Agent {
  #process;
  #answers;
  #nextId = 1;

  constructor(...options) {
    this.#process = spawn(server, options, {
      env: home.environment(server),
      cwd: '/',
      stdio: ['pipe', 'pipe', 'inherit'],
    });
    this.#answers = readline.createInterface({ input: this.#process.stdout })[Symbol.asyncIterator]();
  }

  /** Sends one request, shows it, and gives the response. `show` turns the response into what is printed of it. */
  async request(method, params, show = prettyAnswer) {
    const request = { jsonrpc: '2.0', id: this.#nextId++, method, ...(params && { params }) };
    say(colour(36, `→ ${method === 'tools/call' ? `${params.name} ${JSON.stringify(params.arguments)}` : method}`));
    this.#process.stdin.write(`${JSON.stringify(request)}\n`);
    const { value, done } = await this.#answers.next();
    if (done) throw new Error(`the server ended instead of answering ${method}`);
    const response = JSON.parse(value);
    say(colour(response.error ? 31 : 32, `← ${show(response)}`));
    return response;
  }

  notify(method) {
    say(colour(36, `→ ${method}`));
    this.#process.stdin.write(`${JSON.stringify({ jsonrpc: '2.0', method })}\n`);
  }

  /** Calls a tool. Gives what it returned, or undefined where it failed. */
  async call(name, args = {}) {
    const response = await this.request('tools/call', { name, arguments: args });
    return response.error ? undefined : JSON.parse(response.result.content[0].text);
  }

  async end() {
    const ended = once(this.#process, 'close');
    this.#process.stdin.end();
    const [status] = await ended;
    say(`The agent closes the pipe; the server ends with status ${status}.`);
  }
}

/** Starts the stand-in; gives it once it listens. What else it says is shown. */
async function startStandin() {
  const script = path.join(home.scratch('standin'), 'script.json');
  fs.writeFileSync(script, JSON.stringify(standinScript));
  const standin = await new Standin(standinProgram, home, '--script', script).listening();
  for (const stream of [standin.process.stdout, standin.process.stderr]) {
    readline.createInterface({ input: stream }).on('line', (line) => say(colour(2, line)));
  }
  return standin;
}

async function applicationClosed(agent) {
  heading('The agent introduces itself');
  await agent.request('initialize', {
    protocolVersion: '2024-11-05',
    capabilities: {},
    clientInfo: { name: 'demo', version: '1.0.0' },
  });
  agent.notify('notifications/initialized');
  await agent.request('tools/list', undefined, ({ result }) => {
    const names = result.tools.map((tool) => tool.name);
    return `${names.length} tools: ${names.join(', ')}`;
  });

  heading('What is answered from the user\'s files, with or without the application');
  await agent.call('orvane_version');
  await agent.call('current_settings');
  await agent.call('list_dictionary');
  await agent.call('list_augments');
  await agent.call('remember_preference', { note: 'Prefer metric units.' });
  await agent.call('read_preferences');

  heading('What the application would answer, while it is not running');
  await agent.call('list_input_devices');
}

async function applicationRunning(agent) {
  heading('Devices: listing them, choosing one, choosing one that is not there');
  const { devices } = await agent.call('list_input_devices');
  await agent.call('set_input_device', { name: devices.at(-1).name });
  await agent.call('set_input_device', { name: 'Gramophone' });

  heading('The user does not consent');
  await agent.call('set_assistant_backend', { name: 'codex' });

  heading('Augments, until their slots are full');
  for (const id of ['concise', 'supportive', 'step-by-step', 'explain-simply', 'study-buddy', 'writing-partner']) {
    if ((await agent.call('activate_augment', { id })) === undefined) break;
  }

  heading('A meeting');
  const { meetings } = await agent.call('list_meetings', { limit: 1 });
  await agent.call('get_meeting_notes', { id: meetings[0].id });

  heading('The Slate');
  await agent.call('slate_open');
  await agent.call('slate_set_frontmatter', { key: 'status', value: 'draft' });
  await agent.call('get_slate');
}

let standin;
try {
  writeSamples();
  say(`A private home for this session: ${home.directory}`);
  const agent = new Agent('--agent', 'demo');
  await applicationClosed(agent);
  standin = await startStandin();
  heading('The application (a stand-in for it) is started');
  await applicationRunning(agent);
  heading('The end');
  await agent.end();
  if (home.decoyEntries().length > 0) throw new Error('the server wrote into HOME');
} finally {
  await standin?.end();
  home.remove();
}

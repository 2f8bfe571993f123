// The official TypeScript SDK's client works with the application, for which the stand-in stands in: every forwarded
// tool goes through server and socket, and the raw requests are compared.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

import { PrivateHome } from '../support/private_home.mjs';
import { programUnderTest, standinUnderTest, toolNames } from '../support/program.mjs';
import { Standin } from '../support/standin.mjs';

const program = programUnderTest();
const home = new PrivateHome();
const record = path.join(home.scratch('record'), 'requests.jsonl');
const localTools = [
  'current_settings',
  'list_augments',
  'list_dictionary',
  'orvane_version',
  'read_preferences',
  'remember_preference',
];
const client = new Client({ name: 'application-session-test', version: '1.0.0' });
const transportErrors = [];
const calls = [];
let standin;

/** Calls a tool and gives the object it returned. */
async function call(name, args = {}) {
  calls.push({ method: name, args });
  const result = await client.callTool({ name, arguments: args });
  return JSON.parse(result.content[0].text);
}

/** Calls a tool that must fail and gives the error. */
async function failingCall(name, args = {}) {
  const error = await call(name, args).then(
    (value) => assert.fail(`${name} succeeded with ${JSON.stringify(value)}`),
    (reason) => reason,
  );
  assert.equal(typeof error.code, 'number', String(error));
  return error;
}

before(async () => {
  standin = await new Standin(standinUnderTest(), home, '--record', record).listening();
  client.onerror = (error) => transportErrors.push(error);
  await client.connect(
    new StdioClientTransport({
      command: program,
      args: ['--agent', 'demo-agent'],
      env: home.environment(program),
      cwd: '/',
      stderr: 'ignore',
    }),
  );
});

after(async () => {
  await client.close();
  await standin.end();
  home.remove();
});

test('settings, devices and voices', async () => {
  const insights = await call('get_insights');
  assert.equal(typeof insights, 'object');
  const { devices } = await call('list_input_devices');
  await call('set_input_device', { name: devices.at(-1).name });
  const unknown = await failingCall('set_input_device', { name: 'no such device' });
  assert.equal(unknown.code, -32602);
  assert.equal(unknown.data.code, 'validation_failed');
  assert.ok(JSON.stringify(unknown.data).includes(devices.at(-1).name), 'the visible devices are in the error data');
  await call('set_input_device', { name: '' });
  await call('set_assistant_backend', { name: 'codex' });
  await call('set_assistant_trigger_word', { phrase: 'hey orvane / please' });
  assert.equal((await failingCall('set_assistant_trigger_word', { phrase: '' })).code, -32602);
  await call('set_selection_edit_enabled', { enabled: false });
  await call('list_personas');
  await call('set_active_persona', { id: 'pirate' });
  await call('list_tts_voices');
  assert.equal((await call('speak', { text: 'Good morning.', identifier: 'reply-1' })).queued, true);
});

test('augments and their slots', async () => {
  assert.equal((await call('deactivate_augment', { id: 'supportive' })).deactivated, false);
  let full;
  for (const id of ['supportive', 'devops', 'step-by-step', 'recipe-helper', 'qa-engineer', 'copy-editor']) {
    full = await call('activate_augment', { id }).catch((error) => error);
    if (full instanceof Error) break;
  }
  assert.equal(full.code, -32011);
  assert.equal(full.data.code, 'slot_budget_full');
  assert.equal(full.data.loadout.length, 5);
});

test('meetings', async () => {
  const { meetings } = await call('list_meetings', { limit: 500, startedAfter: '2024-01-01' });
  assert.equal(meetings.length, 50);
  const found = await call('search_meetings', { query: 'pricing' });
  const id = 'mtg-pricing';
  assert.ok(JSON.stringify(found).includes(id));
  assert.equal((await call('get_meeting', { id, include: 'notes' })).transcript, undefined);
  assert.equal((await call('get_meeting_notes', { id, includeUserNotes: true })).id, id);
  assert.equal((await call('get_meeting_transcript', { id, wordCap: 5, includeTimestamps: true })).id, id);
  assert.equal((await failingCall('get_meeting_transcript')).code, -32602);
});

test('the Slate', async () => {
  assert.equal((await call('slate_open')).open, true);
  await call('slate_set_routing', { enabled: false });
  await call('slate_set_frontmatter', { key: 'status', value: 'ünfinished ✓' });
  assert.equal((await failingCall('slate_set_frontmatter', { key: 'title', value: 'x' })).code, -32602);
  await call('slate_remove_frontmatter', { key: 'status' });
  assert.equal((await failingCall('slate_remove_frontmatter', { key: 'status' })).code, -32602);
  const { openFiles } = await call('get_slate');
  const chunk = await call('read_open_file', { path: openFiles[0].path, offset: 2, limit: 3 });
  assert.equal(chunk.returnedChars, 3);
  assert.ok((await failingCall('read_open_file', { path: '/no/such/tab' })).data.openPaths.length > 0);
  assert.equal(typeof (await call('slate_save', { name: 'brief' })).path, 'string');
  assert.equal((await call('slate_clear')).cleared, true);
  assert.equal((await call('slate_clear')).cleared, false);
  await call('slate_close');
});

test('computer use', async () => {
  const { apps } = await call('computer_list_apps', { query: '' });
  const restricted = apps.find((app) => app.restricted);
  const usable = apps.find((app) => !app.restricted);
  assert.equal((await failingCall('computer_inspect', { target: restricted.name })).code, -32602);
  const state = await call('computer_inspect', { target: usable.name });
  const state_id = state.computer_state_id;
  const target = (role) => state.top_targets.find((candidate) => candidate.role === role).target_id;
  assert.equal((await call('computer_read', { state_id, mode: 'visible_text' })).mode, 'visible_text');
  await call('computer_get_screenshot', { state_id });
  await call('computer_open', { kind: 'app', value: usable.name });
  const button = { state_id, target_id: target('button') };
  assert.equal((await call('computer_click', button)).route_used, 'skylight_pointer_click');
  assert.equal((await failingCall('computer_click', { ...button, synthetic: true, route: 'ax_action' })).code, -32602);
  const field = { state_id, target_id: target('editable_text') };
  assert.equal((await failingCall('computer_deliver_text', { ...field, text: 'x' })).code, -32602);
  await call('computer_deliver_text', { ...field, text: 'ada@example.com', replace_existing: true });
  await call('computer_press_key', { state_id, key: 'a', modifiers: ['command'], count: 500 });
  await call('computer_scroll', { state_id, direction: 'down' });
  assert.equal((await failingCall('computer_select', { ...button, value: 'none' })).code, -32602);
  await failingCall('computer_read', { state_id: 'no-such-state', mode: 'page' });
});

test('arguments that no schema allows pass as they are', async () => {
  await call('get_insights', {
    '': null,
    unknown: [[], {}, -0.5, 1e300, '\u0000', 'ä'],
    nested: { _agent: 'x', _origin: 1 },
  });
  await call('get_insights', { _agent: 'forged', _origin: 'assistant' });
});

test('every forwarded tool was called, and the application received what the agent sent', async () => {
  const forwarded = toolNames.filter((name) => !localTools.includes(name));
  assert.deepEqual(new Set(calls.map((each) => each.method)), new Set(forwarded));

  const expected = calls.map(({ method, args }) => {
    const { _origin, ...passed } = args;
    return JSON.stringify({ method, args: { ...passed, _agent: 'demo-agent' } });
  });
  assert.deepEqual(fs.readFileSync(record, 'utf8').trimEnd().split('\n'), expected);
});

test('when the application has ended, its tools say so and local ones go on', async () => {
  assert.equal(await standin.end(), 0);
  assert.equal(fs.existsSync(home.socket), false);
  assert.equal((await failingCall('get_slate')).code, -32001);
  const result = await client.callTool({ name: 'list_augments', arguments: {} });
  assert.equal(JSON.parse(result.content[0].text).slotsTotal, 5);
  assert.deepEqual(transportErrors, []);
  assert.deepEqual(home.decoyEntries(), []);
});

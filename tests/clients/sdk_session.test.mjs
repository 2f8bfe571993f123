// A session of the official TypeScript SDK's client with the server.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

import { PrivateHome } from '../support/private_home.mjs';
import { programUnderTest, toolNames } from '../support/program.mjs';
import { settingsAnswer, settingsFile } from './settings.mjs';

const program = programUnderTest();
const home = new PrivateHome();
const client = new Client({ name: 'sdk-session-test', version: '1.0.0' });
let diagnostics = '';
const transportErrors = [];

/** The object in a tool's answer. */
async function callTool(name, args = {}) {
  const result = await client.callTool({ name, arguments: args });
  assert.equal(result.isError, false);
  assert.equal(result.content.length, 1);
  assert.equal(result.content[0].type, 'text');
  return JSON.parse(result.content[0].text);
}

before(async () => {
  home.write('settings.json', settingsFile);
  const transport = new StdioClientTransport({
    command: program,
    env: home.environment(program),
    cwd: '/',
    stderr: 'pipe',
  });
  transport.stderr.on('data', (data) => (diagnostics += data));
  // The SDK reports here what is not a message on standard output.
  client.onerror = (error) => transportErrors.push(error);
  await client.connect(transport);
});

after(async () => {
  await client.close();
  home.remove();
});

test('it introduces itself', () => {
  assert.equal(client.getServerVersion().name, 'orvane');
  assert.equal(typeof client.getServerVersion().version, 'string');
  assert.notEqual(client.getServerCapabilities().tools, undefined);
});

test('it answers a ping', async () => {
  assert.deepEqual(await client.ping(), {});
});

test('it lists every tool once, with all hints', async () => {
  const { tools } = await client.listTools();
  assert.deepEqual(tools.map((tool) => tool.name), toolNames);
  for (const tool of tools) {
    assert.equal(tool.inputSchema.type, 'object', tool.name);
    for (const hint of ['readOnlyHint', 'destructiveHint', 'idempotentHint', 'openWorldHint']) {
      assert.equal(typeof tool.annotations[hint], 'boolean', `${hint} of ${tool.name}`);
    }
  }
});

test('current_settings reports the settings file, read anew on every call', async () => {
  assert.deepEqual(await callTool('current_settings'), settingsAnswer);
  home.write('settings.json', '{"assistantTrigger":""}');
  assert.equal((await callTool('current_settings')).assistantTriggerWord, '');
  home.write('settings.json', settingsFile);
  assert.deepEqual(await callTool('current_settings'), settingsAnswer);
});

test('orvane_version names the version of the introduction', async () => {
  const answer = await callTool('orvane_version');
  assert.equal(answer.version, client.getServerVersion().version);
});

test('an unknown tool is invalid', async () => {
  await assert.rejects(client.callTool({ name: 'no_such_tool', arguments: {} }), (error) => {
    assert.equal(error.code, -32602);
    assert.match(error.message, /no_such_tool/);
    return true;
  });
});

test('a forwarded tool says that the application is not running', async () => {
  await assert.rejects(client.callTool({ name: 'list_input_devices', arguments: {} }), (error) => {
    assert.equal(error.code, -32001);
    assert.match(error.message, /Orvane app is not running — open the app and try again\./);
    return true;
  });
});

test('nothing went where it should not', async () => {
  await client.close();
  assert.deepEqual(transportErrors, []);
  assert.equal(diagnostics, '');
  assert.deepEqual(home.decoyEntries(), []);
});

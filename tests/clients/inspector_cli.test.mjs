// The MCP Inspector's command line asks the server for single answers and lints the schemas of its tools.
import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import path from 'node:path';
import { after, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { promisify } from 'node:util';

import { PrivateHome } from '../support/private_home.mjs';
import { programUnderTest, toolNames } from '../support/program.mjs';
import { settingsAnswer, settingsFile } from './settings.mjs';

const inspector = fileURLToPath(
  new URL('node_modules/@modelcontextprotocol/inspector/clients/launcher/build/index.js', import.meta.url),
);
const program = programUnderTest();
const home = new PrivateHome();
home.write('settings.json', settingsFile);
after(() => home.remove());

/** What the Inspector prints; fails with its output if it ends with another status than 0. */
async function inspect(...parameters) {
  const variables = Object.entries(home.environment(program)).flatMap(([name, value]) => ['-e', `${name}=${value}`]);
  const { stdout, stderr } = await promisify(execFile)(
    process.execPath,
    [inspector, '--cli', program, ...variables, ...parameters],
    {
      // The Inspector keeps files of its own in its home.
      env: { HOME: home.scratch('inspector'), PATH: `${path.dirname(process.execPath)}:/usr/bin:/bin` },
      cwd: home.scratch('inspector'),
      maxBuffer: 16 * 1024 * 1024,
    },
  );
  return { answer: JSON.parse(stdout), diagnostics: stderr };
}

test('tools/list passes the strict lint', async () => {
  const { answer, diagnostics } = await inspect('--method', 'tools/list', '--strict');
  assert.deepEqual(answer.tools.map((tool) => tool.name), toolNames);
  assert.equal(diagnostics, '');
});

test('tools/call gives the answer of current_settings', async () => {
  const { answer } = await inspect('--method', 'tools/call', '--tool-name', 'current_settings');
  assert.equal(answer.isError, false);
  assert.deepEqual(JSON.parse(answer.content[0].text), settingsAnswer);
});

test('nothing appeared in the decoy', () => {
  assert.deepEqual(home.decoyEntries(), []);
});

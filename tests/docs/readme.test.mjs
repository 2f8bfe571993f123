// What README.md tells people to paste and to expect, tried with the real program.
import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { text } from 'node:stream/consumers';
import { after, test } from 'node:test';

import { listingSession } from '../support/listing_session.mjs';
import { PrivateHome } from '../support/private_home.mjs';
import { programUnderTest, toolNames } from '../support/program.mjs';
import { root, textOf } from '../support/sources.mjs';

const readme = textOf('README.md');
const program = programUnderTest();
const placeholder = '/absolute/path/to/orvane-mcp';
const home = new PrivateHome();
after(() => home.remove());

/** The blocks of this language, which contain `content`. */
const blocks = (language, content) =>
  [...readme.matchAll(new RegExp(`^\`\`\`${language}\n(.*?)^\`\`\``, 'gms'))]
    .map((match) => match[1])
    .filter((block) => block.includes(content));

const session = (command, args, env = {}) =>
  listingSession(command, args, { ...home.environment(program), ...env });

const configurations = blocks('json', 'mcpServers').map((block) => JSON.parse(block).mcpServers);
const commandLines = blocks('sh', placeholder);

test('there are snippets of both kinds, and every option is in one', () => {
  assert.ok(configurations.length >= 2);
  assert.ok(commandLines.length >= 1);
  const all = JSON.stringify([configurations, commandLines]);
  for (const option of ['--toolsets', '--read-only', '--agent']) assert.ok(all.includes(option), option);
});

for (const [name, server] of configurations.flatMap(Object.entries)) {
  test(`the snippet of ${name} with ${(server.args ?? []).join(' ')} starts a server`, async () => {
    assert.deepEqual(Object.keys(server).filter((key) => !['command', 'args', 'env'].includes(key)), []);
    assert.equal(server.command, placeholder);
    const { names } = await session(program, server.args ?? [], server.env);
    const narrows = ['--toolsets', '--read-only'].some((option) => server.args?.includes(option));
    assert.ok(names.length > 0);
    assert.equal(names.length < toolNames.length, narrows);
  });
}

for (const line of commandLines) {
  test(`the command line starts a server: ${line.trim()}`, async () => {
    // A shell splits the words; the program is started without it, so that nothing stands between it and its sanitizer.
    const words = execFileSync('/bin/sh', ['-c', `printf '%s\\n' ${line}`], { encoding: 'utf8' }).trimEnd().split('\n');
    assert.equal(words[0], placeholder);
    const { names } = await session(program, words.slice(1));
    assert.ok(names.length > 0 && names.length < toolNames.length);
  });
}

const table = readme.slice(readme.indexOf('<!-- toolsets'), readme.indexOf('<!-- end of toolsets'));
const rows = [...table.matchAll(/^\| ([^|]+) \| (\d+) \| ([\d,]+) \|/gm)].map(([, options, count, bytes]) => ({
  // What is no code are words for the lack of options.
  options: options.startsWith('`') ? options.replaceAll('`', '').split(' ') : [],
  count: Number(count),
  bytes: Number(bytes.replaceAll(',', '')),
}));

test('the table has each toolset, all but computer, read-only and all', () => assert.equal(rows.length, 10));

for (const { options, count, bytes } of rows) {
  test(`${options.join(' ') || 'no option'} offers ${count} tools in ${bytes} bytes`, async () => {
    const seen = await session(program, options);
    assert.equal(seen.names.length, count);
    // Every description names the home directory once; the table's is that of a user called someone.
    const longerPaths = count * (home.directory.length - '/Users/someone'.length);
    assert.equal(seen.bytes - longerPaths, bytes);
  });
}

test('the tools that it names are beyond the first 40', async () => {
  const { names } = await session(program, []);
  const sentence = readme.match(/only the first 40 tools\.(.*?)would be missing/s)[1];
  const named = [...sentence.matchAll(/`([a-z_]+)`/g)].map((match) => match[1]);
  assert.ok(named.length > 0);
  assert.deepEqual(named.filter((name) => !names.slice(40).includes(name)), []);
});

test('the tools that need no application are those that it names', async () => {
  const [, sentence] = readme.match(/tools that answer from files work:(.*?)The others/s);
  const local = [...sentence.matchAll(/`([a-z_]+)`/g)].map((match) => match[1]);
  const { names } = await session(program, []);
  const server = spawn(program, [], { env: home.environment(program), cwd: '/', stdio: ['pipe', 'pipe', 'inherit'] });
  for (const name of names) {
    server.stdin.write(`${JSON.stringify({ jsonrpc: '2.0', id: name, method: 'tools/call', params: { name } })}\n`);
  }
  server.stdin.end();
  const answers = (await text(server.stdout)).trimEnd().split('\n').map((line) => JSON.parse(line));
  const answered = answers.filter(({ result }) => result).map(({ id }) => id);
  assert.deepEqual(answered.sort(), local.sort());
  const refusals = new Set(answers.filter(({ error }) => error).map(({ error }) => error.message));
  assert.deepEqual([...refusals], [readme.match(/fail with\n`(.*?)`/)[1]]);
});

for (const document of ['README.md', 'docs/troubleshooting.md']) {
  test(`what ${document} says to try gives what it says`, async () => {
    const [, request, answer] = textOf(document).match(/^ *\$ echo '(.*)' \| \S*orvane-mcp\n *(.*)$/m);
    const server = spawn(program, [], { env: home.environment(program), cwd: '/', stdio: ['pipe', 'pipe', 'inherit'] });
    server.stdin.end(`${request}\n`);
    assert.equal(await text(server.stdout), `${answer}\n`);
  });
}

test('it leads to every document', () => {
  const documents = ['.', 'docs'].flatMap((directory) =>
    fs
      .readdirSync(path.join(root, directory))
      .filter((name) => /\.(md|1)$/.test(name))
      .map((name) => path.join(directory, name)),
  );
  const missing = documents.filter((name) => name !== 'README.md' && !readme.includes(`](${name})`));
  assert.deepEqual(missing, []);
});

test('nothing appeared in the decoy', () => assert.deepEqual(home.decoyEntries(), []));

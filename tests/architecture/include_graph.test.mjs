// The rules of docs/architecture.md on who may know whom, held against the sources of the product.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { folders, sourcesOf, textOf } from '../support/sources.mjs';

// The folders that each folder may include beside itself.
const below = {
  server: ['tools', 'audit', 'core', 'platform'],
  tools: ['bridge', 'audit', 'core', 'platform'],
  bridge: ['protocol', 'core', 'platform'],
  audit: ['core', 'platform'],
  protocol: ['core'],
  core: ['platform'],
  platform: [],
};

const sources = folders.flatMap(sourcesOf);
const own = (file) => [...textOf(file).matchAll(/^#\s*include "([^"]+)"/gm)].map((match) => match[1]);
const system = (file) => [...textOf(file).matchAll(/^#\s*include <([^>]+)>/gm)].map((match) => match[1]);
const folderOf = (file) => file.split('/')[0];

/** The text of a file without comments. */
const code = (file) => textOf(file).replace(/\/\*.*?\*\/|\/\/[^\n]*/gs, '');

/** The lines "file: what" for each file and each thing that `find` finds in it. */
const findings = (files, find) => files.flatMap((file) => find(file).map((what) => `${file}: ${what}`));

test('there are sources in every folder', () => {
  for (const folder of folders) assert.ok(sourcesOf(folder).length > 0, folder);
});

test('every include of the project leads to a file, named from the root', () => {
  assert.deepEqual(findings(sources, (file) => own(file).filter((name) => !sources.includes(name))), []);
});

test('a folder includes only the folders below it', () => {
  const isAllowed = (file, name) => [folderOf(file), ...below[folderOf(file)]].includes(folderOf(name));
  assert.deepEqual(findings(sources, (file) => own(file).filter((name) => !isAllowed(file, name))), []);
});

test('the table of the document is the rule', () => {
  const rows = [...textOf('docs/architecture.md').matchAll(/^\| `(\w+)\/` \|([^|]*)\|/gm)];
  const documented = Object.fromEntries(
    rows.map(([, folder, uses]) => [folder, [...uses.matchAll(/`(\w+)\/`/g)].map((match) => match[1])]),
  );
  assert.deepEqual(documented, below);
});

test('files form no circle', () => {
  const done = new Set();
  const visit = (file, path) => {
    assert.ok(!path.includes(file), `${[...path, file].join(' → ')}`);
    if (done.has(file)) return;
    for (const name of own(file)) visit(name, [...path, file]);
    done.add(file);
  };
  for (const file of sources) visit(file, []);
});

test('only the system\'s folder knows which system it is', () => {
  const names = /\b(__APPLE__|__linux__|__MACH__|TARGET_OS_\w+)\b/g;
  const asks = (file) => [...code(file).matchAll(names)].map((match) => match[0]);
  assert.deepEqual(findings(sources.filter((file) => folderOf(file) !== 'platform'), asks), []);
});

test('Objective-C stays in the system\'s folder', () => {
  assert.deepEqual(sources.filter((file) => file.endsWith('.mm') && folderOf(file) !== 'platform'), []);
});

test('no header that costs start-up time or that macOS 13.3 lacks', () => {
  const barred = ['iostream', 'fstream', 'sstream', 'filesystem', 'format', 'regex', 'memory_resource', 'stop_token'];
  assert.deepEqual(findings(sources, (file) => system(file).filter((name) => barred.includes(name))), []);
});

test('only the bridge opens connections, and only the protocol knows where to', () => {
  const calls = (file) => [...code(file).matchAll(/\b(connect|openUnixSocket)\(/g)].map((match) => match[1]);
  const strangers = sources.filter((file) => !['bridge', 'platform'].includes(folderOf(file)));
  assert.deepEqual(findings(strangers, calls), []);
  assert.deepEqual(sources.filter((file) => code(file).includes('mcp.sock')), ['protocol/mcp_socket_path.cpp']);
});

test('only one file knows all tools', () => {
  const isTool = (name) => /^tools\/(forwarded|computer|local)\//.test(name);
  const many = sources.filter((file) => !file.startsWith('tools/') && own(file).filter(isTool).length > 1);
  assert.deepEqual(many, []);
  assert.ok(own('tools/all_tools.cpp').filter(isTool).length > 5);
});

test('the environment is read in few places', () => {
  const readers = sources.filter((file) => /\bgetenv\(/.test(code(file)));
  assert.deepEqual(readers.sort(), ['audit/context_audit_log.cpp', 'server/main.cpp']);
});

// packaging/registry/server.json, filled in as by script/package-mcpb, keeps the registry's rules; and the rules bite.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { textOf } from '../support/sources.mjs';
import { violations } from './registry_rules.mjs';

const manifest = JSON.parse(textOf('packaging/mcpb/manifest.json'));
const filledIn = () =>
  JSON.parse(
    textOf('packaging/registry/server.json')
      .replace('@VERSION@', manifest.version)
      .replace('@URL@', 'https://example.com/releases/orvane-mcp-1.0.0.mcpb')
      .replace('@SHA256@', '0123456789abcdef'.repeat(4)),
  );

test('the entry keeps the rules', () => assert.deepEqual(violations(filledIn()), []));

test('no placeholder is left', () => assert.doesNotMatch(JSON.stringify(filledIn()), /@[A-Z0-9]+@/));

test('it says the same as the manifest of the bundle', () => {
  const entry = filledIn();
  assert.equal(entry.title, manifest.display_name);
  assert.equal(entry.description, manifest.description);
  assert.equal(entry.name.split('/')[1], manifest.name);
});

const defects = {
  'no schema': (entry) => delete entry.$schema,
  'a name without a domain': (entry) => (entry.name = 'orvane-mcp'),
  'a name with two slashes': (entry) => (entry.name = 'com.orvane/orvane/mcp'),
  'an empty title': (entry) => (entry.title = ''),
  'a long description': (entry) => (entry.description = 'a'.repeat(101)),
  'no exact version': (entry) => (entry.version = '^1.0.0'),
  'nothing to install': (entry) => (entry.packages = []),
  'a key that is unknown': (entry) => (entry.license = 'none'),
  'another kind of package': (entry) => (entry.packages[0].registryType = 'zip'),
  'a placeholder as address': (entry) => (entry.packages[0].identifier = '@URL@'),
  'an address without encryption': (entry) => (entry.packages[0].identifier = 'http://example.com/orvane-mcp.mcpb'),
  'no checksum': (entry) => delete entry.packages[0].fileSha256,
  'a checksum in capitals': (entry) => (entry.packages[0].fileSha256 = 'A'.repeat(64)),
  'another transport': (entry) => (entry.packages[0].transport = { type: 'sse' }),
  'a version of the package': (entry) => (entry.packages[0].version = '1.0.0'),
  'an unknown key of the package': (entry) => (entry.packages[0].sha = ''),
};

for (const [defect, make] of Object.entries(defects)) {
  test(`the rules refuse ${defect}`, () => {
    const entry = filledIn();
    make(entry);
    assert.equal(violations(entry).length, 1);
  });
}

// Starts the server of an unpacked bundle as a host does, from the bundle's manifest, and holds a session with it.
//
//   node tests/packaging/bundle_session.mjs DIRECTORY
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';

import { listingSession } from '../support/listing_session.mjs';
import { PrivateHome } from '../support/private_home.mjs';

const bundle = path.resolve(process.argv[2]);
const manifest = JSON.parse(fs.readFileSync(path.join(bundle, 'manifest.json'), 'utf8'));
const home = new PrivateHome();

/** A text of the manifest with the values that a host puts into it. */
function filledIn(template, choices) {
  const filled = template
    .replaceAll('${__dirname}', bundle)
    .replace(/\$\{user_config\.(\w+)\}/g, (_, name) => choices[name] ?? manifest.user_config[name].default);
  assert.doesNotMatch(filled, /\$\{/, 'a placeholder is left');
  return filled;
}

/** The names that the server lists when the user makes these choices. */
async function listedNames(choices) {
  const { command, args } = manifest.server.mcp_config;
  const program = filledIn(command, choices);
  assert.equal(program, path.join(bundle, manifest.server.entry_point));
  const filledArguments = args.map((argument) => filledIn(argument, choices));
  return (await listingSession(program, filledArguments, home.environment(program))).names;
}

try {
  assert.deepEqual(await listedNames({}), manifest.tools.map((tool) => tool.name));
  assert.equal((await listedNames({ toolsets: '' })).length, manifest.tools.length);
  assert.deepEqual(await listedNames({ toolsets: 'voice' }), ['list_tts_voices', 'speak']);
  assert.deepEqual(home.decoyEntries(), []);
} finally {
  home.remove();
}
console.log(`The bundle's server offers its ${manifest.tools.length} tools.`);

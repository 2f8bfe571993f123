// The rules of the MCP registry for a server.json, as far as they concern a server that comes as a bundle.
//
//   node tests/packaging/registry_rules.mjs FILE     fails with what is wrong in FILE
import fs from 'node:fs';
import { pathToFileURL } from 'node:url';

const isText = (value, shortest, longest) =>
  typeof value === 'string' && value.length >= shortest && value.length <= longest;

const unknownKeys = (object, known) => Object.keys(object).filter((key) => !known.includes(key));

const schemaAddress = /^https:\/\/.+\/schemas\/\d{4}-\d{2}-\d{2}\/server\.schema\.json$/;
const exactVersion = /^\d+\.\d+\.\d+(-[0-9A-Za-z.-]+)?$/;
const serverKeys = [
  '$schema', 'name', 'title', 'description', 'version', 'packages', 'remotes', 'repository', 'websiteUrl', 'icons',
  '_meta',
];
const packageKeys = [
  'registryType', 'identifier', 'fileSha256', 'transport', 'version', 'runtimeHint', 'runtimeArguments',
  'packageArguments', 'environmentVariables',
];

function isBundleAddress(text) {
  return typeof text === 'string' && URL.canParse(text) && new URL(text).protocol === 'https:' && text.includes('mcp');
}

const rules = [
  ['$schema names a version of the schema', ({ $schema }) => schemaAddress.test($schema)],
  [
    'name is a reversed domain, a slash and a name',
    ({ name }) => isText(name, 3, 200) && /^[a-zA-Z0-9.-]+\/[a-zA-Z0-9._-]+$/.test(name),
  ],
  ['title has 1 to 100 characters', ({ title }) => title === undefined || isText(title, 1, 100)],
  ['description has 1 to 100 characters', ({ description }) => isText(description, 1, 100)],
  ['version is one exact version', ({ version }) => isText(version, 1, 255) && exactVersion.test(version)],
  ['there is a package or a remote', ({ packages = [], remotes = [] }) => packages.length + remotes.length > 0],
  ['there are no other keys', (server) => unknownKeys(server, serverKeys).length === 0],
];

const packageRules = [
  ['registryType is mcpb', ({ registryType }) => registryType === 'mcpb'],
  ['identifier is the https address of a bundle', ({ identifier }) => isBundleAddress(identifier)],
  ['fileSha256 is a checksum', ({ fileSha256 }) => /^[a-f0-9]{64}$/.test(fileSha256)],
  ['transport is stdio and nothing more', ({ transport }) => JSON.stringify(transport) === '{"type":"stdio"}'],
  ['a bundle has no version of its own', (entry) => !('version' in entry)],
  ['there are no other keys', (entry) => unknownKeys(entry, packageKeys).length === 0],
];

/** What is wrong with the entry; nothing if all is well. */
export function violations(server) {
  const broken = rules.filter(([, holds]) => !holds(server)).map(([rule]) => rule);
  for (const [index, entry] of (server.packages ?? []).entries()) {
    broken.push(...packageRules.filter(([, holds]) => !holds(entry)).map(([rule]) => `packages[${index}]: ${rule}`));
  }
  return broken;
}

if (import.meta.url === pathToFileURL(process.argv[1]).href) {
  const broken = violations(JSON.parse(fs.readFileSync(process.argv[2], 'utf8')));
  for (const rule of broken) console.error(`${process.argv[2]}: does not hold: ${rule}`);
  process.exitCode = broken.length === 0 ? 0 : 1;
}

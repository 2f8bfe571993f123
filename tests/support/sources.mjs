// The sources of the product, and every file of the repository as text.
import fs from 'node:fs';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

export const root = fileURLToPath(new URL('../..', import.meta.url));

/** The folders of the product, from the top floor to the ground. */
export const folders = ['server', 'tools', 'bridge', 'audit', 'protocol', 'core', 'platform'];

/** The C++ sources below the folder, relative to the root. */
export function sourcesOf(folder) {
  return fs
    .readdirSync(path.join(root, folder), { recursive: true })
    .filter((name) => /\.(h|cpp|mm)$/.test(name))
    .map((name) => path.posix.join(folder, name));
}

export const textOf = (file) => fs.readFileSync(path.join(root, file), 'utf8');

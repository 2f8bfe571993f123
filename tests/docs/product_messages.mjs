// The messages that the product can say, read from its sources: the first literal of each place that makes one.
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

// What makes a message, up to the literal that begins it. A literal that follows only a name is a variable's business.
const makers =
  /(?:\{"(?:error|details)", |(?:\bRPCError\(|\bfailTransport\(|\bfailure\(|\bMCPMutationMalformed\{|\bwriteDiagnostic\(|_error\(|\bJSONWriteError\()[^"){;]*?)(?:std::string\()?"((?:[^"\\]|\\.)*)"/gs;

/** Every message, or its fixed beginning where more is appended, with the file that makes it. */
export function productMessages() {
  return folders.flatMap(sourcesOf).flatMap((file) =>
    [...textOf(file).matchAll(makers)]
      .map(([, literal]) => ({ file, message: JSON.parse(`"${literal}"`).replace(/\n$/, '') })),
  );
}

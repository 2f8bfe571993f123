// The programs under test.
import fs from 'node:fs';

/** The path that ctest passes on in the environment variable `name`. */
function passedOn(name) {
  const program = process.env[name];
  if (!program || !fs.existsSync(program)) throw new Error(`${name} does not name a program; run the tests by ctest`);
  return program;
}

/** The path of the server. */
export const programUnderTest = () => passedOn('ORVANE_PROGRAM_UNDER_TEST');

/** The path of the stand-in for the application. */
export const standinUnderTest = () => passedOn('ORVANE_STANDIN_UNDER_TEST');

/** The names of the tools that a server with all toolsets offers, in ascending order. */
export const toolNames = fs
  .readdirSync(new URL('../snapshots', import.meta.url))
  .map((file) => file.replace(/\.json$/, ''))
  .sort();

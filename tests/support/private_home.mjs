// A home directory that the server takes for the user's, so that nothing of the user's is read or written. On Linux the
// user database says so, by way of libnss-wrapper; on macOS the system's own switch does. HOME names a decoy, in which
// nothing may appear.
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';

// Short, because the path of a socket below it has to fit 103 bytes.
const temporaryDirectory = '/tmp';

function nssWrapperLibrary() {
  const triplet = { x64: 'x86_64-linux-gnu', arm64: 'aarch64-linux-gnu' }[process.arch] ?? '';
  for (const directory of [`/usr/lib/${triplet}`, '/usr/lib64', '/usr/lib', '/usr/local/lib']) {
    const library = path.join(directory, 'libnss_wrapper.so');
    if (fs.existsSync(library)) return library;
  }
  // Without it the program would run in the user's own home.
  throw new Error('libnss_wrapper.so is missing; run script/bootstrap test');
}

// AddressSanitizer's run-time library refuses to run unless it comes first among the preloaded ones.
function sanitizerLibraries(program) {
  const libraries = execFileSync('ldd', [program], { encoding: 'utf8' });
  return [...libraries.matchAll(/=> (\S*\/lib[at]san\.so\S*)/g)].map((match) => match[1]);
}

export class PrivateHome {
  #root = fs.mkdtempSync(path.join(temporaryDirectory, 'orvane-'));

  constructor() {
    for (const directory of [this.directory, this.decoy, this.configuration]) {
      fs.mkdirSync(directory, { recursive: true });
    }
    const { uid, gid } = os.userInfo();
    fs.writeFileSync(path.join(this.#root, 'passwd'), `user:x:${uid}:${gid}::${this.directory}:/bin/sh\n`);
    fs.writeFileSync(path.join(this.#root, 'group'), `user:x:${gid}:\n`);
  }

  /** What the program takes for the user's home directory. */
  get directory() {
    return path.join(this.#root, 'home');
  }

  /** What HOME says instead. */
  get decoy() {
    return path.join(this.#root, 'decoy');
  }

  /** The application's configuration directory in the home. */
  get configuration() {
    return path.join(this.directory, '.config', 'orvane');
  }

  /** Where the application listens. Its directory is there only once somebody made it. */
  get socket() {
    return path.join(this.directory, 'Library', 'Application Support', 'Orvane', 'mcp.sock');
  }

  /** A directory outside of home and decoy, for what a test keeps of its own. Removed with the rest. */
  scratch(name) {
    const directory = path.join(this.#root, name);
    fs.mkdirSync(directory, { recursive: true });
    return directory;
  }

  /** Writes the file `name` of the configuration directory. */
  write(name, text) {
    const file = path.join(this.configuration, name);
    fs.mkdirSync(path.dirname(file), { recursive: true });
    fs.writeFileSync(file, text);
  }

  /** The environment in which `program` has to be started: the few variables that a desktop application passes on. */
  environment(program) {
    // What tells a sanitizer how to run belongs to the program under test, not to the user.
    const sanitizers = Object.entries(process.env).filter(([name]) => /^[A-Z]+SAN_OPTIONS$/.test(name));
    const variables = {
      ...Object.fromEntries(sanitizers),
      HOME: this.decoy,
      LOGNAME: 'user',
      PATH: '/usr/bin:/bin',
      SHELL: '/bin/sh',
      TERM: 'dumb',
      USER: 'user',
    };
    if (process.platform === 'darwin') return { ...variables, CFFIXED_USER_HOME: this.directory };
    return {
      ...variables,
      LD_PRELOAD: [...sanitizerLibraries(program), nssWrapperLibrary()].join(':'),
      NSS_WRAPPER_PASSWD: path.join(this.#root, 'passwd'),
      NSS_WRAPPER_GROUP: path.join(this.#root, 'group'),
    };
  }

  /** The names in the decoy; whatever is there, the program should not have put there. */
  decoyEntries() {
    return fs.readdirSync(this.decoy);
  }

  remove() {
    fs.rmSync(this.#root, { recursive: true, force: true });
  }
}

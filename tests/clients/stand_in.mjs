// Starting and ending the stand-in application in a private home.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs';
import path from 'node:path';

/** The path of the stand-in's program, which ctest passes on. */
export function standInProgram() {
  const program = process.env.ORVANE_STANDIN_UNDER_TEST;
  if (!program || !fs.existsSync(program)) throw new Error('ORVANE_STANDIN_UNDER_TEST does not name the stand-in');
  return program;
}

export class StandIn {
  output = '';
  diagnostics = '';

  constructor(home, ...parameters) {
    const program = standInProgram();
    this.process = spawn(program, parameters, { env: home.environment(program), stdio: ['ignore', 'pipe', 'pipe'] });
    this.process.stdout.on('data', (data) => (this.output += data));
    this.process.stderr.on('data', (data) => (this.diagnostics += data));
    this.ended = once(this.process, 'exit').then(([status]) => status);
  }

  /** Waits until it listens, or fails with what it said. */
  async listening() {
    await Promise.race([once(this.process.stdout, 'data'), this.ended]);
    if (!this.output.includes('listening at')) throw new Error(`the stand-in did not start: ${this.diagnostics}`);
    return this;
  }

  /** Ends it as a user would; gives its exit status. */
  async end(signal = 'SIGTERM') {
    this.process.kill(signal);
    return this.ended;
  }
}

/** Where the application's socket is in `home`. */
export function socketPath(home) {
  return path.join(home.directory, 'Library', 'Application Support', 'Orvane', 'mcp.sock');
}

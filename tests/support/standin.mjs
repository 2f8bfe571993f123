// Starting and ending the stand-in application in a private home.
import { spawn } from 'node:child_process';
import { once } from 'node:events';

/** The stand-in as a running process. */
export class Standin {
  output = '';
  diagnostics = '';

  /** Starts `program`, the stand-in's, in `home` with these parameters. */
  constructor(program, home, ...parameters) {
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

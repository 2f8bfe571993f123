// A session that asks a server for its tools and ends.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { text } from 'node:stream/consumers';

/**
 * Starts the command with exactly these variables, in the directory "/". Gives the names of the tools in the order in
 * which they are listed, and the size in bytes of the line that lists them, its line feed included.
 */
export async function listingSession(command, args, env) {
  const server = spawn(command, args, { env, cwd: '/', stdio: ['pipe', 'pipe', 'inherit'] });
  server.stdin.end(
    '{"jsonrpc":"2.0","id":0,"method":"initialize","params":{}}\n{"jsonrpc":"2.0","id":1,"method":"tools/list"}\n',
  );
  const lines = (await text(server.stdout)).trimEnd().split('\n');
  assert.equal(lines.length, 2);
  assert.equal(JSON.parse(lines[0]).result.serverInfo.name, 'orvane');
  const { tools } = JSON.parse(lines[1]).result;
  return { names: tools.map((tool) => tool.name), bytes: Buffer.byteLength(lines[1]) + 1 };
}

// The peer: a server with the same tools on the official TypeScript SDK's low-level server, as a TypeScript team would
// write it. It answers current_settings from the file and forwards everything else to the application.
//
// usage: server.mjs SNAPSHOT-DIRECTORY SETTINGS-FILE SOCKET
import fs from 'node:fs';
import net from 'node:net';
import path from 'node:path';

import { Server } from '@modelcontextprotocol/sdk/server/index.js';
import { StdioServerTransport } from '@modelcontextprotocol/sdk/server/stdio.js';
import { CallToolRequestSchema, ListToolsRequestSchema } from '@modelcontextprotocol/sdk/types.js';

const [snapshotDirectory, settingsFile, socketPath] = process.argv.slice(2);
const tools = fs
  .readdirSync(snapshotDirectory)
  .sort()
  .map((file) => JSON.parse(fs.readFileSync(path.join(snapshotDirectory, file), 'utf8')));

function currentSettings() {
  let file = {};
  try {
    file = JSON.parse(fs.readFileSync(settingsFile, 'utf8'));
  } catch {
    // A missing file is an empty one.
  }
  return {
    assistantBackend: file.assistantBackend || null,
    assistantEnabled: file.assistantEnabled ?? false,
    assistantTriggerWord: file.assistantTrigger ?? 'computer',
    aiCorrectionEnabled: file.contextMode ?? false,
    dictationHotkey: file.dictationHotkey?.name ?? 'rightOption',
    sttModel: file.sttModel ?? null,
    llmModel: file.llmModel ?? null,
    inputDeviceIndex: file.inputDevice ?? null,
    ttsEnabled: file.ttsEnabled ?? true,
    agentVoices: file.agentVoices ?? {},
  };
}

function forward(method, args) {
  return new Promise((resolve, reject) => {
    const pieces = [];
    const socket = net.createConnection({ path: socketPath, allowHalfOpen: true });
    socket.on('error', reject);
    socket.on('data', (piece) => pieces.push(piece));
    socket.on('end', () => {
      socket.end();
      try {
        resolve(JSON.parse(Buffer.concat(pieces).toString('utf8')).result);
      } catch (error) {
        reject(error);
      }
    });
    socket.end(`${JSON.stringify({ method, args })}\n`);
  });
}

const server = new Server({ name: 'peer', version: '1.0.0' }, { capabilities: { tools: {} } });
server.setRequestHandler(ListToolsRequestSchema, () => ({ tools }));
server.setRequestHandler(CallToolRequestSchema, async ({ params }) => {
  const value =
    params.name === 'current_settings' ? currentSettings() : await forward(params.name, params.arguments ?? {});
  return { content: [{ type: 'text', text: JSON.stringify(value, null, 2) }], isError: false };
});
await server.connect(new StdioServerTransport());

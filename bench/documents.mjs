// The request lines and application answers that the benchmarks use, written as files into a directory.
import fs from 'node:fs';
import path from 'node:path';

/** The lengths in bytes of the lines whose reading is compared, from about the shortest call of a tool on. */
export const lineLengths = [120, 1000, 10000, 100000, 1000000];

const request = (method, params) => `${JSON.stringify({ jsonrpc: '2.0', id: 1, method, params })}\n`;

/** A tools/call line of exactly `length` bytes, line feed included; the padding is one long argument. */
function toolCall(name, length) {
  const line = (padding) => request('tools/call', { name, arguments: { padding } });
  return line('x'.repeat(length - line('').length));
}

/** An answer of the application of about `bytes` bytes: one long string, or many small objects. */
function answer(kind, bytes) {
  const item = { id: 'turn-000001', speaker: 'Ada', text: 'Let us decide on Monday.', seconds: 12.5, final: true };
  const words = 'word and word, ';
  const room = bytes - 100;
  const result =
    kind === 'string'
      ? { transcript: words.repeat(Math.floor(room / words.length)) }
      : { turns: Array(Math.floor(room / (JSON.stringify(item).length + 1))).fill(item) };
  return `${JSON.stringify({ ok: true, result })}\n`;
}

/** Writes all documents into `directory` and returns their paths by name. */
export function writeDocuments(directory) {
  const documents = {
    ping: request('ping'),
    list: request('tools/list'),
    local: toolCall('current_settings', 300),
    forwarded: toolCall('get_insights', 300),
    small: `${JSON.stringify({ ok: true, result: { streak: 4, words: 120000, top: ['orvane', 'agenda'] } })}\n`,
    string: answer('string', 1048576),
    objects: answer('objects', 1048576),
  };
  for (const length of lineLengths) documents[`line${length}`] = toolCall('current_settings', length);
  const paths = {};
  for (const [name, text] of Object.entries(documents)) {
    paths[name] = path.join(directory, `${name}.json`);
    fs.writeFileSync(paths[name], text);
  }
  return paths;
}

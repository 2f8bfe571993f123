// The JSON work of one forwarded answer as a TypeScript server does it: parse the response, print its result for the
// agent, write the message around it. Prints the median in microseconds for each document, as a JSON object.
//
// usage: json_work.mjs DOCUMENT...
import fs from 'node:fs';
import path from 'node:path';

const medians = {};
for (const file of process.argv.slice(2)) {
  const document = fs.readFileSync(file);
  const times = [];
  for (let i = 0; i < 60; ++i) {
    const start = process.hrtime.bigint();
    const { result } = JSON.parse(document.toString('utf8'));
    const text = JSON.stringify(result, null, 2);
    const message = { jsonrpc: '2.0', id: 1, result: { content: [{ type: 'text', text }], isError: false } };
    const bytes = Buffer.from(`${JSON.stringify(message)}\n`);
    times.push(Number(process.hrtime.bigint() - start) / 1000);
    if (bytes.length === 0) throw new Error('nothing was written');
  }
  // The first third warms the compiler up.
  const warm = times.slice(20).sort((a, b) => a - b);
  medians[path.basename(file)] = warm[Math.floor(warm.length / 2)];
}
console.log(JSON.stringify(medians));

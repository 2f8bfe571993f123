// The request lines and application answers that the benchmarks use, written as files into a directory.
import fs from "node:fs";
import path from "node:path";

const request = (method, params) => JSON.stringify({ jsonrpc: "2.0", id: 1, method, params }) + "\n";

/** A tools/call line of exactly `length` bytes, line feed included; the padding is one long argument. */
export function toolCall(name, length) {
  const line = (padding) => request("tools/call", { name, arguments: { padding } });
  return line("x".repeat(Math.max(0, length - line("").length)));
}

/** An answer of the application of about `bytes` bytes: one long string, or many small objects. */
function answer(kind, bytes) {
  const item = { id: "turn-000001", speaker: "Ada", text: "Let us decide on Monday.", seconds: 12.5, final: true };
  const result = kind === "string" ? { transcript: "word and word, " } : { turns: [item] };
  if (kind === "string") result.transcript = result.transcript.repeat(Math.floor((bytes - 100) / 15));
  else result.turns = Array(Math.floor((bytes - 100) / (JSON.stringify(item).length + 1))).fill(item);
  return JSON.stringify({ ok: true, result }) + "\n";
}

/** Writes all documents into `directory` and returns their paths by name. */
export function writeDocuments(directory) {
  const documents = {
    ping: request("ping"),
    list: request("tools/list"),
    local: toolCall("current_settings", 300),
    forwarded: toolCall("get_insights", 300),
    small: JSON.stringify({ ok: true, result: { streak: 4, words: 120000, top: ["orvane", "agenda"] } }) + "\n",
    string: answer("string", 1048576),
    objects: answer("objects", 1048576),
  };
  for (const length of [100, 1000, 10000, 100000, 1000000]) {
    documents[`line${length}`] = toolCall("current_settings", Math.max(length, 120));
  }
  const paths = {};
  for (const [name, text] of Object.entries(documents)) {
    paths[name] = path.join(directory, `${name}.json`);
    fs.writeFileSync(paths[name], text);
  }
  return paths;
}

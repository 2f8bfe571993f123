// The messages that the product can say, read from its sources: the first literal of each place that makes one.
import { folders, sourcesOf, textOf } from '../support/sources.mjs';

// What makes a message, up to the literal that begins it. A literal that follows only a name is a variable's business.
const member = String.raw`\{"(?:error|details)", `;
const calls = 'RPCError|failTransport|failure|MCPMutationMalformed|writeDiagnostic|JSONWriteError';
const maker = String.raw`(?:\b(?:${calls})[({]|_error\()[^"){;]*?`;
const literal = String.raw`"((?:[^"\\]|\\.)*)"`;
const makers = new RegExp(String.raw`(?:${member}|${maker})(?:std::string\()?${literal}`, 'gs');

/** Every message, or its fixed beginning where more is appended, with the file that makes it. */
export function productMessages() {
  return folders.flatMap(sourcesOf).flatMap((file) =>
    [...textOf(file).matchAll(makers)]
      .map(([, text]) => ({ file, message: JSON.parse(`"${text}"`).replace(/\n$/, '') })),
  );
}

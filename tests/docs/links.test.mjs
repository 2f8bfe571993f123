// Every relative link of the documents leads to a file, and to a heading where it names one.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { test } from 'node:test';

import { root, textOf } from '../support/sources.mjs';

const documents = ['.', 'docs'].flatMap((directory) =>
  fs
    .readdirSync(path.join(root, directory))
    .filter((name) => name.endsWith('.md'))
    .map((name) => path.join(directory, name)),
);

/** The anchor that a heading gets. */
const anchorOf = (heading) => heading.toLowerCase().replace(/[^\p{L}\p{N} _-]/gu, '').trim().replaceAll(' ', '-');

for (const document of documents) {
  test(`the links of ${document}`, () => {
    for (const [, target] of textOf(document).matchAll(/\]\(([^)\s]+)\)/g)) {
      if (/^[a-z]+:/.test(target)) continue;
      const [file, anchor] = target.split('#');
      const linked = file === '' ? document : path.join(path.dirname(document), file);
      assert.ok(fs.existsSync(path.join(root, linked)), `${target} leads nowhere`);
      if (anchor === undefined) continue;
      const anchors = [...textOf(linked).matchAll(/^#+ (.*)$/gm)].map((match) => anchorOf(match[1]));
      assert.ok(anchors.includes(anchor), `${target}: no such heading`);
    }
  });
}

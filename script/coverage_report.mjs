// Sums up what gcov recorded in the build directory BUILD of the program's own sources: the lines that were reached, and
// of each condition the outcomes that were seen.
//
// gcov sees more branches than were written; those that the compiler made by itself do not count, reached or not:
// - A call that may throw has two ways on, back to the caller and into the cleanup. Neither is a decision of ours.
// - A line without a condition (if, while, for, switch, ?, &&, ||) still gets loops and tests for what it constructs and
//   destroys: the elements of a braced list, temporaries, the guard of a static value.
// - Where every other outcome of a line was seen, a test that was never come to belongs to the cleanup: one that was
//   written would stand behind an outcome that is missing.
// A line that holds nothing but closing brackets is none: only the cleanup after an exception is ever ascribed to it, or
// the return of what stands above it.
//
//   node script/coverage_report.mjs BUILD [--missed]
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';

const root = path.resolve(import.meta.dirname ?? path.dirname(new URL(import.meta.url).pathname), '..');
const build = path.resolve(process.argv[2]);
const listMissed = process.argv.includes('--missed');
const folders = ['audit', 'bridge', 'core', 'platform', 'protocol', 'server', 'tools'];

function recordings(directory) {
  return fs.readdirSync(directory, { withFileTypes: true, recursive: true })
    .filter((entry) => entry.isFile() && entry.name.endsWith('.gcda'))
    .map((entry) => path.join(entry.parentPath ?? entry.path, entry.name));
}

// The code of each line of `file`, without comments and the content of strings.
const sources = new Map();
function source(file) {
  const read = () => fs.readFileSync(path.join(root, file), 'utf8').split('\n').map((line) => line
    .replace(/R"\((?:[^)]|\)(?!"))*\)"|"(?:[^"\\]|\\.)*"|'(?:[^'\\]|\\.)+'/g, '""')
    .replace(/\/\/.*/, '')
    .trim());
  if (!sources.has(file)) sources.set(file, read());
  return sources.get(file);
}

const isCode = (file, number) => !/^[\])};,]*$/.test(source(file)[number - 1]);

// A condition's outcome may be ascribed to the line after its operator, and to the line before it.
function hasCondition(file, number) {
  const [before, line, after] = [-2, -1, 0].map((offset) => source(file)[number + offset] ?? '');
  return /\b(if|while|for|switch)\b|\?|&&|\|\|/.test(line) || /(&&|\|\||\?)$/.test(before) ||
    /^(&&|\|\||\?)/.test(after);
}

// file -> line -> { count, branches: { shape: [count, …] } }. One line may stand in several object files and template
// instances; a branch counts as taken where any of them takes it.
const files = new Map();

function add(file, { line_number: number, count, branches }) {
  if (!isCode(file, number)) return;
  const lines = files.get(file) ?? files.set(file, new Map()).get(file);
  const line = lines.get(number) ?? lines.set(number, { count: 0, branches: new Map() }).get(number);
  line.count += count;
  if (!hasCondition(file, number)) return;
  // gcov names a call's way into the cleanup right after its way back.
  const counts = branches
    .filter((branch, index) => !branch.throw && !branches[index + 1]?.throw)
    .map((branch) => branch.count);
  if (!line.branches.has(counts.length)) line.branches.set(counts.length, counts.map(() => 0));
  const known = line.branches.get(counts.length);
  counts.forEach((taken, index) => { known[index] += taken; });
}

// The linker may take a header's functions from the tests' own objects.
for (const folder of [...folders, 'tests']) {
  if (!fs.existsSync(path.join(build, folder))) continue;
  for (const recording of recordings(path.join(build, folder))) {
    const text = execFileSync('gcov', ['--json-format', '--stdout', '--branch-probabilities', recording],
      { cwd: build, maxBuffer: 1 << 30, stdio: ['ignore', 'pipe', 'ignore'] }).toString();
    for (const document of text.split('\n').filter((line) => line !== '')) {
      for (const { file, lines } of JSON.parse(document).files) {
        const name = path.relative(root, path.resolve(build, file));
        if (!folders.includes(name.split('/')[0])) continue;
        for (const line of lines) add(name, line);
      }
    }
  }
}

// A test has two outcomes, which stand side by side; a switch has more.
function withoutCleanup(file, number, counts) {
  if (/\bswitch\b/.test(source(file)[number - 1])) return counts;
  const reached = counts.filter((taken, index) => taken > 0 || counts[index ^ 1] > 0);
  return reached.every((taken) => taken > 0) ? reached : counts;
}

const percent = (part, whole) => (whole === 0 ? '  100.0' : ((100 * part) / whole).toFixed(1).padStart(7));
const total = { lines: 0, linesHit: 0, branches: 0, branchesHit: 0 };
const missed = [];
console.log(
  `${'file'.padEnd(36)} ${'lines'.padStart(6)} ${'%'.padStart(7)} ${'branches'.padStart(9)} ${'%'.padStart(7)}`,
);
for (const [name, lines] of [...files].sort()) {
  const sum = { lines: lines.size, linesHit: 0, branches: 0, branchesHit: 0 };
  for (const [number, { count, branches }] of [...lines].sort((a, b) => a[0] - b[0])) {
    if (count > 0) sum.linesHit += 1;
    else missed.push(`${name}:${number}`);
    // Where instances differ in shape, the one that shows most stands for the line.
    const counts = withoutCleanup(name, number, [...branches].sort((a, b) => b[0] - a[0])[0]?.[1] ?? []);
    const hit = counts.filter((taken) => taken > 0).length;
    sum.branches += counts.length;
    sum.branchesHit += hit;
    if (count > 0 && hit < counts.length) missed.push(`${name}:${number}: ${hit} of ${counts.length} branches`);
  }
  for (const key of Object.keys(total)) total[key] += sum[key];
  console.log(`${name.padEnd(36)} ${String(sum.lines).padStart(6)} ${percent(sum.linesHit, sum.lines)} ` +
    `${String(sum.branches).padStart(9)} ${percent(sum.branchesHit, sum.branches)}`);
}
console.log(`${'all'.padEnd(36)} ${String(total.lines).padStart(6)} ${percent(total.linesHit, total.lines)} ` +
  `${String(total.branches).padStart(9)} ${percent(total.branchesHit, total.branches)}`);
if (listMissed) console.log(['', ...missed].join('\n'));

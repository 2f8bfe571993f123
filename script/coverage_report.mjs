// Sums up what gcov recorded in the build directory BUILD of the program's own sources.
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

// file -> line -> { count, branches: { shape: [count, …] } }. One line may stand in several object files and template
// instances; a branch counts as taken where any of them takes it.
const files = new Map();

function add(file, { line_number: number, count, branches }) {
  const lines = files.get(file) ?? files.set(file, new Map()).get(file);
  const line = lines.get(number) ?? lines.set(number, { count: 0, branches: new Map() }).get(number);
  line.count += count;
  const counts = branches.filter((branch) => !branch.throw).map((branch) => branch.count);
  if (!line.branches.has(counts.length)) line.branches.set(counts.length, counts.map(() => 0));
  const known = line.branches.get(counts.length);
  counts.forEach((taken, index) => { known[index] += taken; });
}

for (const folder of folders) {
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
    const counts = [...branches].sort((a, b) => b[0] - a[0])[0]?.[1] ?? [];
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

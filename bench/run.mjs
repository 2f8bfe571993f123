// Runs every scenario and prints the tables of figures. Without --quick it overwrites docs/performance-figures.md with
// them.
//
// usage: run.mjs BUILD-DIRECTORY [--quick]
import { execFileSync, spawn } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

import { PrivateHome } from '../tests/support/private_home.mjs';
import { lineLengths, writeDocuments } from './documents.mjs';

const here = path.dirname(fileURLToPath(import.meta.url));
const build = path.resolve(process.argv[2]);
const quick = process.argv.includes('--quick');
const rounds = (full) => (quick ? Math.max(3, Math.floor(full / 20)) : full);
const built = (name) => path.join(build, 'bench', name);
const server = path.join(build, 'orvane-mcp');

const lines = [];
function say(line) {
  lines.push(line);
  console.log(line);
}
const microseconds = (value) => (value >= 100 ? value.toFixed(0) : value.toFixed(2));

/**
 * Runs one scenario, { mode, transport, rounds, batch, request, servers, environment }, and says a row for each of its
 * servers, which are commands by name. The first of them is what the others are compared with.
 */
function measure(title, { mode = 'lockstep', transport = 'pipes', rounds: full = 200, ...scenario }) {
  const servers = Object.entries(scenario.servers).map(([name, command]) => `${name}=${command}`);
  const output = execFileSync(
    built('round-trip'),
    [mode, transport, rounds(full), scenario.batch, scenario.request, ...servers],
    { env: scenario.environment, encoding: 'utf8', maxBuffer: 1 << 24 },
  );
  for (const { name, p50, p90, p99, cpu, ratio, cpuRatio, exit, peakKiB } of JSON.parse(output)) {
    const times = [p50, p90, p99, cpu].map(microseconds);
    const ratios = [ratio, cpuRatio].map((value) => value.toFixed(2));
    say(`| ${[title, name, ...times, ...ratios, microseconds(exit), peakKiB].join(' | ')} |`);
  }
}

/** Runs `body` while an application that answers `response` at once listens at `socket`. */
async function withApplication(socket, response, body) {
  const application = spawn(built('floor-application'), [socket, response]);
  try {
    await new Promise((resolve, reject) => {
      application.stdout.once('data', resolve);
      application.once('exit', () => reject(new Error('the floor application ended')));
      application.once('error', reject);
    });
    body();
  } finally {
    application.kill();
  }
}

async function scenarios(home, documents) {
  // The client splits commands at blanks: what they name is given by short paths without any.
  const links = home.scratch('links');
  fs.symlinkSync(path.dirname(home.socket), path.join(links, 'application'));
  const socket = path.join(links, 'application', path.basename(home.socket));
  const settings = path.join(home.configuration, 'settings.json');
  const snapshots = path.join(here, '../tests/snapshots');

  const floor = (job) => `${built('floor-server')} ${job}`;
  const peer = `${process.execPath} ${path.join(here, 'peer/server.mjs')} ${snapshots} ${settings} ${socket}`;
  const plain = { PATH: '/usr/bin:/bin', HOME: home.decoy };
  const wrapped = home.environment(server);

  say('| scenario | server | p50 µs | p90 µs | p99 µs | CPU µs | ratio | CPU ratio | exit µs | peak KiB |');
  say('|---|---|---:|---:|---:|---:|---:|---:|---:|---:|');
  for (const transport of ['pipes', 'socketpair']) {
    measure(`ping, ${transport}`, {
      transport,
      batch: 100,
      request: documents.ping,
      servers: { floor: floor('text 36'), server, peer },
      environment: plain,
    });
    measure(`local call of 300 B, ${transport}`, {
      transport,
      batch: 100,
      request: documents.local,
      servers: { floor: floor(`file ${settings}`), server, peer },
      environment: wrapped,
    });
    measure(`tools/list, ${transport}`, {
      transport,
      batch: 20,
      request: documents.list,
      servers: { floor: floor('text 44700'), server, peer },
      environment: wrapped,
    });
    measure(`burst of 100 pings, ${transport}`, {
      mode: 'burst',
      transport,
      rounds: 400,
      batch: 100,
      request: documents.ping,
      servers: { floor: floor('text 36'), server },
      environment: plain,
    });
    await withApplication(socket, documents.small, () =>
      measure(`forwarded call of 300 B, ${transport}`, {
        transport,
        batch: 50,
        request: documents.forwarded,
        servers: { floor: floor(`forward ${socket}`), server, peer },
        environment: wrapped,
      }),
    );
  }
  for (const kind of ['string', 'objects']) {
    await withApplication(socket, documents[kind], () =>
      measure(`forwarded answer of 1 MiB, ${kind}`, {
        rounds: 60,
        batch: 3,
        request: documents.forwarded,
        servers: { floor: floor(`forward ${socket}`), server, peer },
        environment: wrapped,
      }),
    );
  }
  for (const length of lineLengths) {
    measure(`local call of ${length} B, pipes`, {
      rounds: 60,
      batch: length > 10000 ? 5 : 50,
      request: documents[`line${length}`],
      servers: { floor: floor(`file ${settings}`), server },
      environment: wrapped,
    });
  }
  const start = { mode: 'start', batch: 1, request: documents.ping, environment: plain };
  measure('start to first answer, against the floor', {
    ...start,
    rounds: 400,
    servers: { floor: built('floor-start'), server },
  });
  measure('start to first answer, against the peer', { ...start, rounds: 20, servers: { server, peer } });
}

/** Says what JSON work an answer of 1 MiB costs the server and the peer. */
function jsonWork(documents) {
  const answers = [documents.string, documents.objects];
  const ours = execFileSync(
    built('json-benchmark'),
    [...answers, '--benchmark_filter=whole', '--benchmark_format=json'],
    // It tells of the machine on standard error.
    { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] },
  );
  const theirs = JSON.parse(
    execFileSync(process.execPath, [path.join(here, 'peer/json_work.mjs'), ...answers], { encoding: 'utf8' }),
  );
  say('| answer | server µs | peer µs | ratio |');
  say('|---|---:|---:|---:|');
  for (const { name, cpu_time: time } of JSON.parse(ours).benchmarks) {
    const document = name.split('/')[1];
    const peer = theirs[document];
    say(`| ${path.parse(document).name} | ${microseconds(time)} | ${microseconds(peer)} | ${(time / peer).toFixed(2)} |`);
  }
}

const home = new PrivateHome();
try {
  fs.mkdirSync(path.dirname(home.socket), { recursive: true });
  home.write(
    'settings.json',
    '{"assistantBackend":"claude","assistantEnabled":true,"agentVoices":{"claude":"heart2"}}',
  );
  const documents = writeDocuments(home.scratch('documents'));
  say(`Machine: ${os.cpus()[0].model}, ${os.cpus().length} cores, Linux; Node ${process.version}.`);
  say('');
  await scenarios(home, documents);
  say('');
  say('JSON work for one answer of 1 MiB, in the same run:');
  say('');
  jsonWork(documents);
  say('');
  say(`Program: ${fs.statSync(server).size} bytes, stripped, with libstdc++ inside.`);
} finally {
  home.remove();
}
if (!quick) {
  const figures = `# Figures of the last run of script/bench\n\n${lines.join('\n')}\n`;
  fs.writeFileSync(path.join(here, '../docs/performance-figures.md'), figures);
}

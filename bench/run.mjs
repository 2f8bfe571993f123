// Runs every scenario and prints the table of figures.
//
// usage: run.mjs BUILD-DIRECTORY [--quick]
import { execFileSync, spawn } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { PrivateHome } from "../tests/support/private_home.mjs";
import { writeDocuments } from "./documents.mjs";

const here = path.dirname(fileURLToPath(import.meta.url));
const build = path.resolve(process.argv[2]);
const quick = process.argv.includes("--quick");
const rounds = (full) => (quick ? Math.max(3, Math.floor(full / 20)) : full);

const program = path.join(build, "orvane-mcp");
const floor = path.join(build, "bench", "floor-server");
const home = new PrivateHome();
const socket = home.socket;
fs.mkdirSync(path.dirname(socket), { recursive: true });
home.write("settings.json", '{"assistantBackend":"claude","assistantEnabled":true,"agentVoices":{"claude":"heart2"}}');
const documents = writeDocuments(home.scratch("documents"));
// The programs are given by short paths without blanks: the client splits commands at blanks.
const link = (name, target) => {
  const file = path.join(home.scratch("links"), name);
  fs.symlinkSync(target, file);
  return file;
};
const socketLink = link("application", path.dirname(socket)) + "/mcp.sock";
const peer = `${process.execPath} ${path.join(here, "peer/server.mjs")} ${path.join(here, "../tests/snapshots")} ${path.join(home.configuration, "settings.json")} ${socketLink}`;

function roundTrip(mode, transport, roundCount, batch, request, servers, environment) {
  const output = execFileSync(
    path.join(build, "bench", "round-trip"),
    [mode, transport, roundCount, batch, request, ...Object.entries(servers).map(([name, command]) => `${name}=${command}`)],
    { env: environment, encoding: "utf8", maxBuffer: 1 << 24 },
  );
  return JSON.parse(output);
}

async function withApplication(response, body) {
  const application = spawn(path.join(build, "bench", "floor-application"), [socketLink, response]);
  try {
    await new Promise((resolve, reject) => {
      application.stdout.once("data", resolve);
      application.once("exit", () => reject(new Error("the floor application ended")));
    });
    return body();
  } finally {
    application.kill();
  }
}

const lines = [];
const say = (line) => {
  lines.push(line);
  console.log(line);
};
const microseconds = (value) => (value >= 100 ? value.toFixed(0) : value.toFixed(2));
function tell(title, results) {
  for (const result of results) {
    say(
      `| ${title} | ${result.name} | ${microseconds(result.p50)} | ${microseconds(result.p90)} | ${microseconds(result.p99)} | ` +
        `${microseconds(result.cpu)} | ${result.ratio.toFixed(2)} | ${result.cpuRatio.toFixed(2)} | ${microseconds(result.exit)} | ${result.peakKiB} |`,
    );
  }
}

const plain = { PATH: "/usr/bin:/bin", HOME: home.decoy };
const wrapped = home.environment(program);

say(`Machine: ${os.cpus()[0].model}, ${os.cpus().length} cores, Linux ${os.release()}; Node ${process.version}.`);
say("");
say("| scenario | server | p50 µs | p90 µs | p99 µs | CPU µs | ratio | CPU ratio | exit µs | peak KiB |");
say("|---|---|---:|---:|---:|---:|---:|---:|---:|---:|");
for (const transport of ["pipes", "socketpair"]) {
  const few = rounds(200);
  tell(`ping, ${transport}`, roundTrip("lockstep", transport, few, 100, documents.ping, { floor: `${floor} text 36`, server: program, peer }, plain));
  tell(`local call of 300 B, ${transport}`, roundTrip("lockstep", transport, few, 100, documents.local, { floor: `${floor} file ${path.join(home.configuration, "settings.json")}`, server: program, peer }, wrapped));
  tell(`tools/list, ${transport}`, roundTrip("lockstep", transport, few, 20, documents.list, { floor: `${floor} text 44700`, server: program, peer }, wrapped));
  tell(`burst of 100 pings, ${transport}`, roundTrip("burst", transport, rounds(400), 100, documents.ping, { floor: `${floor} text 36`, server: program }, plain));
  await withApplication(documents.small, () =>
    tell(`forwarded call of 300 B, ${transport}`, roundTrip("lockstep", transport, few, 50, documents.forwarded, { floor: `${floor} forward ${socketLink}`, server: program, peer }, wrapped)));
}
for (const kind of ["string", "objects"]) {
  await withApplication(documents[kind], () =>
    tell(`forwarded answer of 1 MiB, ${kind}`, roundTrip("lockstep", "pipes", rounds(60), 3, documents.forwarded, { floor: `${floor} forward ${socketLink}`, server: program, peer }, wrapped)));
}
for (const length of [100, 1000, 10000, 100000, 1000000]) {
  tell(`local call of ${length} B, pipes`, roundTrip("lockstep", "pipes", rounds(60), length > 10000 ? 5 : 50, documents[`line${length}`], { floor: `${floor} file ${path.join(home.configuration, "settings.json")}`, server: program }, wrapped));
}
tell("start to first answer", roundTrip("start", "pipes", rounds(400), 1, documents.ping, { floor: path.join(build, "bench", "floor-start"), server: program }, plain));
tell("start to first answer", roundTrip("start", "pipes", rounds(20), 1, documents.ping, { server: program, peer }, plain));

say("");
say("JSON work for one answer of 1 MiB, in the same run:");
say("");
const ours = JSON.parse(
  execFileSync(path.join(build, "bench", "json-benchmark"), [documents.string, documents.objects, "--benchmark_filter=whole", "--benchmark_format=json"], { encoding: "utf8", stdio: ["ignore", "pipe", "ignore"] }),
);
const theirs = JSON.parse(execFileSync(process.execPath, [path.join(here, "peer/json_work.mjs"), documents.string, documents.objects], { encoding: "utf8" }));
say("| answer | server µs | peer µs | ratio |");
say("|---|---:|---:|---:|");
for (const result of ours.benchmarks) {
  const name = result.name.split("/")[1];
  say(`| ${name.replace(".json", "")} | ${microseconds(result.cpu_time)} | ${microseconds(theirs[name])} | ${(result.cpu_time / theirs[name]).toFixed(2)} |`);
}
say("");
say(`Program: ${fs.statSync(program).size} bytes, stripped, with libstdc++ inside.`);
if (!quick) fs.writeFileSync(path.join(here, "../docs/performance-figures.md"), `# Figures of the last run of script/bench\n\n${lines.join("\n")}\n`);
home.remove();

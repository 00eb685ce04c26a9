// A web server of its own for a test: lighttpd with the demo's configuration on a free port.
import { execFileSync, spawn } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import http from 'node:http';
import net from 'node:net';
import path from 'node:path';
import { lighttpd, project, site as ownSite, work } from './environment.mjs';

function freePort() {
  return new Promise((resolve, reject) => {
    const server = net.createServer();
    server.on('error', reject);
    server.listen(0, '127.0.0.1', () => {
      const { port } = server.address();
      server.close(() => resolve(port));
    });
  });
}

// Starts lighttpd with a configuration. Resolves to the process once it answers on the port, or to
// nothing when it ended before, as it does when another program has taken the port.
async function start(file, port) {
  const child = spawn(lighttpd, ['-D', '-f', file], { stdio: ['ignore', 'ignore', 'ignore'] });
  const runs = () => child.exitCode === null && child.signalCode === null;
  const answers = () => new Promise((resolve) => {
    const socket = net.connect(port, '127.0.0.1');
    socket.on('connect', () => { socket.destroy(); resolve(true); });
    socket.on('error', () => resolve(false));
  });
  while (runs()) {
    await new Promise((resolve) => { setTimeout(resolve, 20); });
    if (await answers() && runs()) return child;
  }
}

// Returns the file's path.
function writeConfiguration(site, index, port, headers) {
  let configuration = execFileSync(path.join(project, 'scripts/lighttpd_config.sh'),
    [site, index, String(port)], { encoding: 'utf8' });
  if (Object.keys(headers).length) {
    const lines = Object.entries(headers).map(([name, value]) => `"${name}" => "${value}"`);
    configuration += `server.modules += ("mod_setenv")\n` +
      `setenv.add-response-header = (${lines.join(', ')})\n`;
  }
  const file = path.join(work, `lighttpd_${port}.conf`);
  writeFileSync(file, configuration);
  return file;
}

// Serves `site` at / and the index directory at /search/. `headers` are added to every answer.
// Returns { origin, search, stop }, `search` being the address of the search program.
export async function serve(index, { site = ownSite, headers = {} } = {}) {
  let child, port;
  for (let attempt = 0; !child; attempt++) {
    if (attempt === 3) throw new Error('lighttpd did not start');
    port = await freePort();
    child = await start(writeConfiguration(site, index, port, headers), port);
  }
  const origin = `http://127.0.0.1:${port}`;
  return {
    origin,
    search: `${origin}/search/search.cgi`,
    stop: () => new Promise((resolve) => {
      child.once('exit', resolve);
      child.kill();
    }),
  };
}

// The body of an address, without a browser.
export function get(address) {
  return new Promise((resolve, reject) => {
    http.get(address, (answer) => {
      const parts = [];
      answer.on('data', (part) => parts.push(part));
      answer.on('end', () => resolve({
        status: answer.statusCode, headers: answer.headers, body: Buffer.concat(parts).toString('utf8'),
      }));
      answer.on('error', reject);
    }).on('error', reject);
  });
}

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

// Resolves once something answers on the port; rejects when the server has ended before.
function answers(port, child) {
  return new Promise((resolve, reject) => {
    child.once('exit', (code) => reject(new Error(`lighttpd ended with ${code}`)));
    const attempt = () => {
      const socket = net.connect(port, '127.0.0.1');
      socket.on('connect', () => { socket.destroy(); resolve(); });
      socket.on('error', () => setTimeout(attempt, 20));
    };
    attempt();
  });
}

// Serves `site` at / and the index directory at /search/. `headers` are added to every answer.
// Returns { origin, search, stop }, `search` being the address of the search program.
export async function serve(index, { site = ownSite, headers = {} } = {}) {
  const port = await freePort();
  let configuration = execFileSync(path.join(project, 'scripts/lighttpd_config.sh'),
    [site, index, String(port)], { encoding: 'utf8' });
  if (Object.keys(headers).length) {
    const lines = Object.entries(headers).map(([name, value]) => `"${name}" => "${value}"`);
    configuration += `server.modules += ("mod_setenv")\n` +
      `setenv.add-response-header = (${lines.join(', ')})\n`;
  }
  const file = path.join(work, `lighttpd_${port}.conf`);
  writeFileSync(file, configuration);
  const child = spawn(lighttpd, ['-D', '-f', file], { stdio: ['ignore', 'ignore', 'ignore'] });
  await answers(port, child);
  const origin = `http://127.0.0.1:${port}`;
  return {
    origin,
    search: `${origin}/search/search.cgi`,
    stop: () => new Promise((resolve) => {
      child.removeAllListeners('exit');
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

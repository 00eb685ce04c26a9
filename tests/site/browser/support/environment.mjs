// Where things are. ctest sets the variables; without them build/release is used.
import { createRequire } from 'node:module';
import { mkdirSync } from 'node:fs';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

const here = path.dirname(fileURLToPath(import.meta.url));
const variable = (name, otherwise) => process.env[name] ?? otherwise;

export const project = path.resolve(here, '../../../..');
export const assets = path.join(project, 'assets');
export const bin = variable('VELA_BIN', path.join(project, 'build/release/bin'));
export const writeIndex = variable('VELA_WRITE_INDEX', path.join(bin, 'write_index'));
export const work = variable('VELA_WORK', path.join(project, 'build/release/tests/site/browser/work'));
export const screenshots = variable('VELA_SCREENSHOTS', path.join(project, 'build/release/screenshots'));
export const modules = variable('VELA_MODULES', path.join(project, 'build/browser_modules'));
export const chromium = variable('VELA_CHROMIUM', '/usr/bin/chromium');
export const lighttpd = variable('VELA_LIGHTTPD', '/usr/sbin/lighttpd');
export const site = path.resolve(here, '../site');

mkdirSync(work, { recursive: true });
mkdirSync(screenshots, { recursive: true });

// The Node modules lie in the build folder, where an import does not look.
export const require = createRequire(path.join(modules, 'node_modules', 'any.js'));

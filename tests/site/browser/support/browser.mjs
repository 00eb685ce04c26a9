// Chromium for the tests: pages that note what must not happen, checks and screenshots.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import path from 'node:path';
import { chromium as program, require, screenshots } from './environment.mjs';

const { chromium } = require('playwright-core');
const axeSource = readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

const WIDE = { width: 1280, height: 900 };
const PHONE = { width: 360, height: 740 };

export function launch() {
  return chromium.launch({
    executablePath: program,
    headless: true,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--no-proxy-server',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
}

// Browsers ask every site for an icon; a site need not have one.
const isIcon = (address) => address.endsWith('/favicon.ico');

// A page in a visitor's own window. `page.troubles` lists errors on the console, exceptions,
// requests that failed and requests to another machine.
export async function openPage(browser, options = {}) {
  const context = await browser.newContext({ viewport: WIDE, ...options });
  const page = await context.newPage();
  page.setDefaultTimeout(15000);
  page.troubles = [];
  page.on('console', (message) => {
    if (message.type() !== 'error' || isIcon(message.location().url)) return;
    page.troubles.push(`console: ${message.text()}`);
  });
  page.on('pageerror', (error) => page.troubles.push(`exception: ${error.message}`));
  page.on('request', (request) => {
    const { hostname, protocol } = new URL(request.url());
    if (protocol.startsWith('http') && hostname !== '127.0.0.1') {
      page.troubles.push(`request elsewhere: ${request.url()}`);
    }
  });
  page.on('response', (response) => {
    if (response.status() >= 400 && !isIcon(response.url())) {
      page.troubles.push(`status ${response.status()}: ${response.url()}`);
    }
  });
  return page;
}

// Does what leads to another page, and waits until that one is there.
export async function follow(page, action) {
  await Promise.all([page.waitForEvent('load'), action()]);
}

// Unfolds the options of the form, which are unfolded already where something is chosen in them.
export async function unfold(page) {
  if (await page.locator('.vela_options[open]').count() === 0) await page.locator('.vela_options summary').click();
}

// Types with no pause between the keys as the page sees it, however slow the machine is. The page's
// clock has to be installed.
export async function typeQuickly(page, box, text) {
  const hour = 3600 * 1000;
  await page.clock.pauseAt(await page.evaluate(() => Date.now()) + hour);
  await box.pressSequentially(text);
  await page.clock.resume();
}

// Ends the page's window; whatever was noted fails the test.
export async function closePage(page) {
  await page.context().close();
  assert.deepEqual(page.troubles, []);
}

// Every rule of axe-core, the best practices included. `exclude` are selectors of what the browser
// itself puts on the page.
export async function assertAccessible(page, exclude = []) {
  await page.evaluate(axeSource);
  const violations = await page.evaluate(async (without) => {
    const result = await window.axe.run({ exclude: without.map((selector) => [selector]) },
      { resultTypes: ['violations'] });
    return result.violations.map((violation) =>
      `${violation.id}: ${violation.nodes.map((node) => node.html.slice(0, 160)).join(' | ')}`);
  }, exclude);
  assert.deepEqual(violations, []);
}

// Nothing stands out at the side, at any width; what lies wholly to the left is there for those who
// listen.
export async function assertFits(page) {
  const wide = await page.evaluate(() => {
    const room = document.documentElement.clientWidth;
    const out = [...document.body.querySelectorAll('*')].filter((element) => {
      const box = element.getBoundingClientRect();
      return box.width > 1 && (box.right > room + 1 || (box.left < -1 && box.right > 0));
    });
    return out.map((element) => element.outerHTML.slice(0, 120));
  });
  assert.deepEqual(wide, []);
}

export async function shot(page, name) {
  await page.screenshot({ path: path.join(screenshots, `${name}.png`), fullPage: true, animations: 'disabled' });
}

// One state of a page in every look: wide and on a phone, by day and in the dark. `show` brings a new
// page there, `check` looks at it. The screenshots are NAME_1280_light.png and so on.
export async function inEveryLook(browser, name, show, check, options = {}) {
  for (const viewport of [WIDE, PHONE]) {
    const page = await openPage(browser, { ...options, viewport });
    await show(page);
    for (const colorScheme of ['light', 'dark']) {
      await page.emulateMedia({ colorScheme });
      await shot(page, `${name}_${viewport.width}_${colorScheme}`);
      await check(page);
    }
    await closePage(page);
  }
}

// The policy of docs/content_security.md, made by the program printed there and sent by the server:
// everything works under it, and what it does not name is refused.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { closePage, launch, openPage, unfold } from './support/browser.mjs';
import { project } from './support/environment.mjs';
import { makeGarden } from './support/garden.mjs';
import { serve } from './support/server.mjs';

async function makePolicy(index, query) {
  const text = readFileSync(path.join(project, 'docs/content_security.md'), 'utf8');
  const program = /```python\n([^]*?)```/.exec(text)[1];
  const open = await serve(index);
  const addresses = [`${open.search}?vela_query=${query}`, `${open.origin}/search/vela_results.xsl`];
  const made = execFileSync('python3', ['-c', program, ...addresses], { encoding: 'utf8' }).trim();
  await open.stop();
  return made;
}

let browser, server, page, policy;
before(async () => {
  const index = makeGarden('content_security');
  policy = await makePolicy(index, 'a');
  server = await serve(index, { headers: { 'Content-Security-Policy': policy } });
  browser = await launch();
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

async function visit(query) {
  page = await openPage(browser);
  const answer = await page.goto(server.search + query);
  assert.equal(answer.headers()['content-security-policy'], policy);
}

test('the policy allows nothing at large', () => {
  assert.ok(!policy.includes('unsafe-inline') && !policy.includes('unsafe-eval'));
  // Two scripts of the program, one of the XML view, two buttons.
  assert.equal(policy.match(/script-src ([^;]*)/)[1].match(/'sha256-/g).length, 5);
  assert.equal(policy.match(/style-src ([^;]*)/)[1].match(/'sha256-/g).length, 2);
});

test('it is the same for an index in a single-byte character set', async () => {
  const settings = { Charset: '"iso-8859-1"', UseUTF8: 0 };
  assert.equal(await makePolicy(makeGarden('content_security_latin1', { settings }), 'caf%E9'), policy);
});

test('under it the page has its style, suggestions, calendar and category boxes', async () => {
  await visit('?vela_query=rose');
  assert.equal(await page.locator('.vela_bar').evaluate((bar) => getComputedStyle(bar).display), 'flex');
  await page.locator('#vela_searchbox').fill('');
  await page.locator('#vela_searchbox').pressSequentially('glas');
  await page.waitForSelector('[role=option]');
  const list = page.locator('.vela_ac_list');
  assert.equal(await list.evaluate((element) => getComputedStyle(element).position), 'absolute');
  assert.ok((await list.boundingBox()).width > 100);
  await page.keyboard.press('Escape');
  await unfold(page);
  await page.getByLabel('Courses').check();
  assert.equal(await page.locator('#vela_cat-1').isChecked(), false);  // vela_search.js runs
  for (const field of ['vela_datefrom', 'vela_dateto']) {
    await page.locator(`#${field} + input`).click();
    await page.waitForSelector('dialog[open]');
    await page.keyboard.press('Enter');
    await page.waitForSelector('dialog', { state: 'detached' });
    assert.match(await page.locator(`#${field}`).inputValue(), /^\d\d\/\d\d\/\d{4}$/);
  }
  assert.ok(await page.locator('img.result_image').first().evaluate((image) => image.complete && image.naturalWidth > 0));
  await page.locator('.vela_panel .vela_button').click();
  await page.waitForURL(/vela_cat/);
  await closePage(page);
});

test('under it the XML view works', async () => {
  await visit('?vela_xml=1&vela_query=garden');
  await page.waitForSelector('.result_pages a');
  assert.equal(await page.locator('.vela_bar').evaluate((bar) => getComputedStyle(bar).display), 'flex');
  // The note that Chromium itself puts on such pages has style attributes and a handler, which the
  // policy refuses; nothing of ours has.
  page.troubles = page.troubles.filter((trouble) => !/inline style|inline event handler/.test(trouble));
  await closePage(page);
});

test('anything else is refused', async () => {
  await visit('?vela_query=rose');
  await page.evaluate(() => {
    const script = document.createElement('script');
    script.textContent = 'window.wasRun = 1';
    document.body.append(script);
    document.querySelector('h1').setAttribute('onclick', 'window.wasRun = 2');
    document.querySelector('h1').click();
    const style = document.createElement('style');
    style.textContent = 'body { display: none }';
    document.body.append(style);
  });
  assert.equal(await page.evaluate(() => window.wasRun), undefined);
  assert.notEqual(await page.evaluate(() => getComputedStyle(document.body).display), 'none');
  assert.equal(page.troubles.length, 3);
  await page.context().close();
});

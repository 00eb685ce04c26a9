// The XML answer in a browser, made readable by vela_results.xsl.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { assertAccessible, assertFits, closePage, follow, inEveryLook, launch, openPage, shot } from './support/browser.mjs';
import { makeGarden } from './support/garden.mjs';
import { serve } from './support/server.mjs';

// Chromium puts a note of its own on pages made by a style sheet in XSL.
const OF_THE_BROWSER = ['xslt-warning-banner'];

let browser, server, page;
before(async () => {
  server = await serve(makeGarden('xml'));
  browser = await launch();
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

async function show(to, query) {
  await to.goto(`${server.search}?vela_xml=1&${query}`);
  await to.waitForSelector('.vela_header');
  await to.evaluate(() => document.querySelector('xslt-warning-banner')?.remove());
}
async function visit(query) {
  page = await openPage(browser);
  await show(page, query);
}
async function check(seen) {
  await assertFits(seen);
  await assertAccessible(seen, OF_THE_BROWSER);
}
const titles = () => page.locator('.result_title a').allInnerTexts();
const text = (selector) => page.locator(selector).first().innerText();

test('results', async () => {
  await visit('vela_query=apple');
  assert.equal(await page.title(), 'apple Holm Garden (XML)');
  assert.deepEqual(await titles(), ['Course: pruning apple trees', 'The old orchard']);
  assert.equal(await text('.searchheading'), 'Results for: apple');
  assert.equal((await text('.summary')).trim(), '2 results');
  assert.deepEqual(await page.locator('.cat_summary li').allInnerTexts(), ['Plants (1)', 'Courses (1)']);
  assert.deepEqual(await page.locator('.recommend_title').allInnerTexts(), ['The old orchard']);
  const orchard = page.locator('.result_block').nth(1);
  assert.equal((await orchard.locator('.category').innerText()).trim(), '[Plants]');
  assert.deepEqual(await orchard.locator('.result_custommeta').allInnerTexts(),
    ['year: 1897', 'season: Autumn', 'colours: Red, White', 'gardener: Ida Holm']);
  assert.equal(await orchard.locator('.infoline').innerText(), '02 Oct 2024 – 47k – /orchard.html');
  assert.deepEqual(await orchard.locator('.highlight').allInnerTexts(), ['apple']);
  await closePage(page);
});

test('pages follow one another, whatever else was asked', async () => {
  await visit('vela_query=garden&vela_cat[]=0&vela_sort=1');
  assert.equal((await text('.summary')).trim(), '1–10 of 23 results');
  assert.equal((await page.locator('.result_pages').innerText()).split('\n').join(' '), 'Page 1 Next »');
  const first = await titles();
  await follow(page, () => page.locator('.result_pages a').click());
  assert.match(page.url(), /vela_page=2/);
  await page.waitForSelector('.result_pages a');
  assert.match(page.url(), /vela_xml=1&vela_query=garden&vela_cat(\[\]|%5B%5D)=0&vela_sort=1&vela_page=2$/);
  assert.equal((await text('.summary')).trim(), '11–20 of 23 results');
  assert.ok(!first.includes((await titles())[0]));
  await follow(page, () => page.locator('.result_pages a', { hasText: 'Next' }).click());
  assert.match(page.url(), /vela_page=3/);
  await page.waitForSelector('.result_pages a');
  assert.equal((await text('.summary')).trim(), '21–23 of 23 results');
  assert.equal(await page.locator('.result_pages a').count(), 1);
  await closePage(page);
});

test('pages follow the answer to a form sent with POST', async () => {
  page = await openPage(browser);
  await page.goto(server.origin);
  await page.evaluate((action) => {
    const form = document.createElement('form');
    Object.assign(form, { action, method: 'post' });
    for (const [name, value] of [['vela_xml', 1], ['vela_query', 'garden sun'], ['vela_page', 2]]) {
      form.append(Object.assign(document.createElement('input'), { type: 'hidden', name, value }));
    }
    document.body.append(form);
    form.submit();
  }, server.search);
  await page.waitForSelector('.result_pages a');
  const range = /^11–20 of \d+ results$/;
  assert.match((await text('.summary')).trim(), range);
  assert.match(await page.locator('.result_pages').innerText(), /Page 2/);
  const second = await titles();
  await follow(page, () => page.locator('.result_pages a', { hasText: 'Next' }).click());
  assert.match(page.url(), /\?vela_xml=1&vela_query=garden%20sun&vela_page=3$/);
  await follow(page, () => page.locator('.result_pages a', { hasText: 'Previous' }).click());
  assert.match(page.url(), /&vela_page=2$/);
  await page.waitForSelector('.result_pages a');
  assert.deepEqual(await titles(), second);
  await closePage(page);
});

test('another question can be asked', async () => {
  await visit('vela_query=apple');
  await page.locator('#vela_searchbox').fill('rose & red');
  await page.keyboard.press('Enter');
  await page.waitForURL(/vela_query=rose/);
  await page.waitForSelector('.result_title');
  assert.match(page.url(), /vela_xml=1/);
  assert.equal((await titles())[0], 'Rose garden');
  await closePage(page);
});

test('corrections, errors and nothing found', async () => {
  await visit('vela_query=roze');
  assert.equal(await text('.suggestion'), 'Did you mean rose or rosemary?');
  assert.equal(await text('.summary'), 'No results found.');
  await closePage(page);
  await visit('vela_query=garden&vela_page=500');
  assert.match(await text('[role=alert]'), /beyond the last result/);
  assert.equal(await page.locator('.summary').count(), 0);
  await closePage(page);
});

for (const [name, query] of [['results', 'vela_query=garden+apple'], ['corrections', 'vela_query=roze'],
  ['nothing', 'vela_query=volcano'], ['error', 'vela_query=garden&vela_page=500']]) {
  test(`every look: ${name}`, () => inEveryLook(browser, `xml_${name}`, (seen) => show(seen, query), check));
}

test('on the narrowest screens', async () => {
  page = await openPage(browser, { viewport: { width: 320, height: 640 } });
  await show(page, 'vela_query=garden+rose');
  await shot(page, 'xml_narrow');
  await check(page);
  await closePage(page);
});

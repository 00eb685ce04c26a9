// The templates for sites that have a look of their own.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { assertAccessible, assertFits, closePage, follow, inEveryLook, launch, openPage, shot } from './support/browser.mjs';
import { assets } from './support/environment.mjs';
import { makeGarden } from './support/garden.mjs';
import { get, serve } from './support/server.mjs';
import { assertValidHtml } from './support/valid_html.mjs';

const servers = {};
let browser;
before(async () => {
  for (const name of ['minimal', 'embed']) {
    servers[name] = await serve(makeGarden(name, { template: `search_template_${name}.html` }));
  }
  servers.minimalBare = await serve(makeGarden('minimal_bare', { template: 'search_template_minimal.html',
    settings: { FormFormat: 1, UseCats: 0, UseMetaFields: 0, DateRangeSearch: 0 } }));
  browser = await launch();
});
after(async () => {
  await browser?.close();
  for (const server of Object.values(servers)) await server.stop();
});

for (const [state, query] of [['start', ''], ['results', '?vela_query=garden+rose'], ['corrections', '?vela_query=roze']]) {
  test(`minimal: ${state}`, async () => {
    await inEveryLook(browser, `minimal_${state}`, (page) => page.goto(servers.minimal.search + query), async (page) => {
      await assertFits(page);
      await assertAccessible(page);
    });
    const { body } = await get(servers.minimal.search + query);
    await assertValidHtml(body);
    assert.ok(!body.includes('vela_search.css'));
  });
}

test('minimal: suggestions, the calendar and paging work', async () => {
  const page = await openPage(browser);
  await page.goto(`${servers.minimal.search}?vela_query=garden`);
  await follow(page, () => page.locator('.result_pages a', { hasText: 'Next' }).click());
  await page.locator('#vela_searchbox').fill('');
  await page.locator('#vela_searchbox').pressSequentially('glas');
  await page.waitForSelector('[role=option]');
  await shot(page, 'minimal_suggestions');
  await page.keyboard.press('Escape');
  await page.locator('#vela_datefrom + input').click();
  await page.waitForSelector('dialog[open]');
  await shot(page, 'minimal_date_picker');
  await assertAccessible(page);
  await closePage(page);
});

// What vela_search.js does with the answer to `query`, in a page that has the category boxes.
async function assertConveniences(page, visit) {
  await visit('?vela_query=garden&vela_cat[]=0&season=1');
  assert.deepEqual(await page.locator('.vela_on').allInnerTexts(), ['Season: Summer \xd7', 'Plants \xd7']);
  await visit('?vela_query=garden&vela_per_page=2&vela_page=7');
  assert.equal(await page.locator('.vela_current').innerText(), '7');
  assert.equal(await page.locator('.result_pages').getAttribute('role'), 'navigation');
  assert.deepEqual(await page.locator('.vela_on').count(), 0);
  await visit('?vela_query=garden&vela_page=7');
  assert.equal(await page.locator('.vela_beyond a').getAttribute('href'), '?vela_query=garden');
  await visit('?vela_query=orchard');
  assert.equal(await page.locator('.infoline').first().innerText(), '02 Oct 2024 \xb7 47k \xb7 /orchard.html');
}

test('minimal: chips, few page numbers, a way back, short addresses', async () => {
  const page = await openPage(browser);
  await assertConveniences(page, (query) => page.goto(servers.minimal.search + query));
  await page.goto(`${servers.minimal.search}?vela_query=garden&season=1`);
  await shot(page, 'minimal_filters');
  await follow(page, () => page.locator('.vela_on a').click());
  assert.equal(new URL(page.url()).search, '?vela_query=garden');
  await page.goto(`${servers.minimalBare.search}?vela_query=`);
  await assertAccessible(page);
  // The question for words stays where the program put it.
  assert.equal(await page.locator('form + .summary, form ~ .summary').getAttribute('role'), 'alert');
  assert.equal(await page.locator('#vela_searchbox').getAttribute('aria-describedby'), 'vela_note');
  await closePage(page);
});

// A site's page around the answer, as a server-side include makes it. With `style` the site links
// the search's style sheet, with `script` vela_search.js.
async function embedded(page, query, style, script) {
  const { body } = await get(servers.embed.search + query);
  const link = (style ? '<link rel="stylesheet" href="/search/vela_search.css">' : '') +
    (script ? '<script defer src="/search/vela_search.js"></script>' : '');
  const whole = `<!DOCTYPE html><html lang="en"><head><meta charset="utf-8"><title>Holm Garden: search</title>${link}
    <meta name="viewport" content="width=device-width, initial-scale=1">
    <style>body { margin: 2rem; font-family: Georgia, serif; background: #fbf8f1; color: #222; } a { color: #14563b; }</style></head>
    <body><header><p><a href="/">Holm Garden</a></p></header><main><h1>Search the garden</h1>${body}</main></body></html>`;
  const address = `${servers.embed.origin}/whole.html`;
  await page.unroute(`${address}*`);
  await page.route(`${address}*`, (route) => route.fulfill({ contentType: 'text/html; charset=utf-8', body: whole }));
  await page.goto(address + query);
}

test('embed: nothing but the search', async () => {
  assert.equal(readFileSync(path.join(assets, 'search_template_embed.html'), 'utf8'), '<!--VELASEARCH-->\n');
  const { body } = await get(`${servers.embed.search}?vela_query=garden`);
  assert.match(body, /^<form /);
  for (const element of ['<html', '<head', '<body', '<link', '<title']) assert.ok(!body.includes(element), element);
});

// The site's text keeps its own look; a light page stays light for those who prefer dark.
async function assertLooksLikeTheSite(page) {
  const style = (selector) => page.locator(selector).first().evaluate((element) => {
    const { color, fontFamily } = getComputedStyle(element);
    return { color, fontFamily };
  });
  assert.equal((await style('.result_title a')).color, 'rgb(20, 86, 59)');
  assert.deepEqual(await style('.description'), { color: 'rgb(34, 34, 34)', fontFamily: 'Georgia, serif' });
}

for (const [name, style] of [['with_the_style_sheet', true], ['without_style', false]]) {
  test(`embed: ${name.replaceAll('_', ' ')}`, async () => {
    const show = (page) => embedded(page, '?vela_query=garden+rose', style);
    await inEveryLook(browser, `embed_${name}`, show, async (page) => {
      await assertLooksLikeTheSite(page);
      if (!style) return;
      await assertFits(page);
      await assertAccessible(page);
    });
  });
}

test('embed: on the narrowest screens', async () => {
  const page = await openPage(browser, { viewport: { width: 320, height: 640 } });
  await embedded(page, '?vela_query=garden+rose', true);
  await shot(page, 'embed_narrow');
  await assertFits(page);
  await closePage(page);
});

test('embed: a page that links the script has its conveniences', async () => {
  const page = await openPage(browser);
  await assertConveniences(page, (query) => embedded(page, query, true, true));
  await embedded(page, '?vela_query=garden&season=1', true, true);
  await shot(page, 'embed_filters');
  await assertAccessible(page);
  await closePage(page);
});

test('embed: suggestions and the calendar work', async () => {
  const page = await openPage(browser);
  await embedded(page, '?vela_query=garden', true);
  await page.locator('#vela_searchbox').fill('');
  await page.locator('#vela_searchbox').pressSequentially('glas');
  await page.waitForSelector('[role=option]');
  await page.keyboard.press('Escape');
  await page.locator('#vela_datefrom + input').click();
  await page.waitForSelector('dialog[open]');
  await shot(page, 'embed_date_picker');
  await closePage(page);
});

// Every state of the default page: accessible, valid, without anything that stands out at the side,
// and with a screenshot for those who look.
import assert from 'node:assert/strict';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { after, before, test } from 'node:test';
import { assertAccessible, assertFits, closePage, inEveryLook, launch, openPage, shot, unfold } from './support/browser.mjs';
import { makeGarden } from './support/garden.mjs';
import { get, serve } from './support/server.mjs';
import { assertValidHtml } from './support/valid_html.mjs';

const arabic = path.join(path.dirname(fileURLToPath(import.meta.url)), 'support/arabic.vlang');
const INDEXES = {
  advanced: {},
  basic: { settings: { FormFormat: 1, DateRangeSearch: 0, UseMetaFields: 0 } },
  one_category: { settings: { SearchMultiCats: 0, DisplayTerms: 1, DisplayScore: 1, TruncateShowURL: 12 } },
  bare: {
    settings: { FormFormat: 1, UseCats: 0, UseMetaFields: 0, DateRangeSearch: 0, UseAutoComplete: 0, UseVelaImage: 0,
      DisplayNumber: 0, DisplayContext: 0, VelaInfo: 0, Timing: 0 },
  },
  broken: { settings: { NumKeywords: -1 } },
  right_to_left: { language: arabic, template: (text) => text.replace('lang="en" dir="ltr"', 'lang="ar" dir="rtl"') },
};

// Types what has suggestions, and points at the second.
async function complete(page) {
  await page.locator('#vela_searchbox').pressSequentially('gar');
  await page.waitForSelector('[role=option]');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowDown');
}

// Name, index, query, what is done on the page, how the browser is set up.
const STATES = [
  ['start', 'advanced', ''],
  ['start_options', 'advanced', '', unfold],
  ['start_basic', 'basic', ''],
  ['suggestions', 'advanced', '', complete],
  ['results', 'advanced', '?vela_query=garden+rose'],
  ['results_pictures', 'advanced', '?vela_query=glasshouse'],
  ['results_last_page', 'advanced', '?vela_query=garden&vela_page=3'],
  ['results_many_pages', 'advanced', '?vela_query=garden&vela_per_page=2&vela_page=7'],
  ['results_by_date', 'advanced', '?vela_query=apple&vela_sort=1'],
  ['results_basic', 'basic', '?vela_query=apple'],
  ['results_bare', 'bare', '?vela_query=apple'],
  ['results_no_scripts', 'advanced', '?vela_query=rose', undefined, { javaScriptEnabled: false }],
  ['options', 'advanced', '?vela_query=rose&vela_cat[]=0&vela_cat[]=1&season=1', unfold],
  ['options_dates', 'advanced', '?vela_query=rose&vela_datefrom=01/01/2025&vela_dateto=31/12/2025', unfold],
  ['options_one_category', 'one_category', '?vela_query=garden&vela_cat[]=1', unfold],
  ['filters', 'advanced', '?vela_query=garden&vela_cat[]=0&season=1&price=9&vela_datefrom=01/01/2020&vela_dateto=31/12/2026'],
  ['filters_several', 'advanced', '?vela_query=garden&vela_cat[]=0&vela_cat[]=1&colours[]=0'],
  ['filters_one_category', 'one_category', '?vela_query=garden&vela_cat[]=1&gardener=Ida'],
  ['date_wrong', 'advanced', '?vela_query=garden&vela_datefrom=soon&vela_dateto=31/12/2026'],
  ['recommended', 'advanced', '?vela_query=pear'],
  ['corrections', 'advanced', '?vela_query=roze&vela_cat[]=2&vela_and=1'],
  ['nothing_found', 'bare', '?vela_query=volcano'],
  ['nothing_found_filtered', 'advanced', '?vela_query=volcano&vela_cat[]=1&season=1'],
  ['no_question', 'bare', '?vela_query='],
  ['beyond_last', 'advanced', '?vela_query=garden&vela_page=7'],
  ['too_far', 'advanced', '?vela_query=garden&vela_page=500'],
  ['long_words', 'advanced', `?vela_query=${'extraordinarily'.repeat(12)}`],
  ['error', 'broken', '?vela_query=garden'],
  ['right_to_left', 'right_to_left', '?vela_query=garden+rose', unfold],
  ['right_to_left_filters', 'right_to_left', '?vela_query=garden&vela_cat[]=0&season=1&vela_page=2'],
];

// What has to give way first on the narrowest screens that there are.
const NARROW = [
  ['start', 'advanced', ''],
  ['results', 'advanced', '?vela_query=garden+apple'],
  ['results_many_pages', 'advanced', '?vela_query=garden&vela_per_page=2&vela_page=7'],
  ['options', 'advanced', '?vela_query=rose&vela_datefrom=01/01/2025&vela_dateto=31/12/2025', unfold],
  ['long_words', 'advanced', `?vela_query=${'extraordinarily'.repeat(12)}`],
  ['right_to_left', 'right_to_left', '?vela_query=rose'],
];

const servers = {};
let browser;
before(async () => {
  for (const [name, options] of Object.entries(INDEXES)) servers[name] = await serve(makeGarden(name, options));
  browser = await launch();
});
after(async () => {
  await browser?.close();
  for (const server of Object.values(servers)) await server.stop();
});

async function check(page) {
  await assertFits(page);
  await assertAccessible(page);
}

for (const [name, index, query, act, options] of STATES) {
  test(name.replaceAll('_', ' '), async () => {
    const show = async (page) => {
      await page.goto(servers[index].search + query);
      await act?.(page);
    };
    // The check for accessibility is a script itself; without scripts the same elements come.
    await inEveryLook(browser, name, show, options?.javaScriptEnabled === false ? assertFits : check, options);
    // A message in front of everything stands before the page begins; the page itself is whole.
    const { body } = await get(servers[index].search + query);
    if (name === 'error') assert.match(body, /^Error: [^<]*<!DOCTYPE html>/);
    await assertValidHtml(body.slice(body.indexOf('<!DOCTYPE')));
  });
}

for (const [name, index, query, act] of NARROW) {
  test(`narrow: ${name.replaceAll('_', ' ')}`, async () => {
    const page = await openPage(browser, { viewport: { width: 320, height: 640 } });
    await page.goto(servers[index].search + query);
    await act?.(page);
    await shot(page, `narrow_${name}`);
    await check(page);
    await closePage(page);
  });
}

test('on paper: what was found, with its addresses, and nothing to press', async () => {
  const page = await openPage(browser, { colorScheme: 'dark' });
  await page.goto(`${servers.advanced.search}?vela_query=rose`);
  await page.emulateMedia({ media: 'print' });
  await shot(page, 'print');
  const seen = (selector) => page.locator(selector).first().isVisible();
  assert.deepEqual([await seen('form'), await seen('.result_pages, .sorting'), await seen('.result_title')], [false, false, true]);
  assert.match(await page.locator('.result_title a').first().evaluate((a) => getComputedStyle(a, '::after').content), /roses\.html/);
  assert.equal(await page.evaluate(() => getComputedStyle(document.body).color), 'rgb(0, 0, 0)');
  await closePage(page);
});

test('when the text is set twice as large', async () => {
  const page = await openPage(browser, { viewport: { width: 640, height: 800 } });
  await page.goto(`${servers.advanced.search}?vela_query=garden+rose`);
  await page.evaluate(() => { document.documentElement.style.fontSize = '32px'; });
  await unfold(page);
  await assertFits(page);
  await shot(page, 'large_text');
  await closePage(page);
});

test('a site\'s own colours win', async () => {
  const page = await openPage(browser);
  await page.goto(`${servers.advanced.search}?vela_query=rose`);
  // The rule stands in front of the style sheet, where it would lose if that one set :root too.
  await page.evaluate(() => {
    const style = document.createElement('style');
    style.textContent = ':root { --vela-accent: rgb(1, 2, 3); }';
    document.head.prepend(style);
  });
  assert.equal(await page.locator('.vela_bar .vela_button').evaluate((button) => getComputedStyle(button).backgroundColor),
    'rgb(1, 2, 3)');
  await closePage(page);
});

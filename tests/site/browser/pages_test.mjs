// Every state of the default page: accessible, valid, without anything that stands out at the side,
// and with a screenshot for those who look.
import assert from 'node:assert/strict';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { after, before, test } from 'node:test';
import { assertAccessible, assertFits, closePage, launch, openPage, shot, unfold } from './support/browser.mjs';
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
  right_to_left: { language: arabic, template: (text) => text.replace('lang="en"', 'lang="ar" dir="rtl"') },
};
const narrow = { viewport: { width: 320, height: 640 } };
const phone = { viewport: { width: 360, height: 740 } };
const dark = { colorScheme: 'dark' };

// Name, index, query, the window, whether the options are unfolded.
const STATES = [
  ['start', 'advanced', ''],
  ['start_dark', 'advanced', '', dark],
  ['start_narrow', 'advanced', '', narrow],
  ['start_basic', 'basic', ''],
  ['results', 'advanced', '?vela_query=garden+rose'],
  ['results_dark', 'advanced', '?vela_query=garden+apple', dark],
  ['results_narrow', 'advanced', '?vela_query=garden+apple', narrow],
  ['results_narrow_dark', 'advanced', '?vela_query=glasshouse', { ...narrow, ...dark }],
  ['results_last_page', 'advanced', '?vela_query=garden&vela_page=3'],
  ['results_many_pages', 'advanced', '?vela_query=garden&vela_per_page=2&vela_page=7'],
  ['results_many_pages_phone', 'advanced', '?vela_query=garden&vela_per_page=2&vela_page=7', { ...phone, ...dark }],
  ['results_by_date', 'advanced', '?vela_query=apple&vela_sort=1'],
  ['results_basic', 'basic', '?vela_query=apple'],
  ['results_bare', 'bare', '?vela_query=apple'],
  ['results_no_scripts', 'advanced', '?vela_query=rose', { javaScriptEnabled: false }],
  ['options', 'advanced', '?vela_query=rose&vela_cat[]=0&vela_cat[]=1&season=1', {}, true],
  ['options_dark', 'advanced', '?vela_query=rose&vela_datefrom=01/01/2025&vela_dateto=31/12/2025', dark, true],
  ['options_narrow', 'advanced', '?vela_query=rose&vela_datefrom=01/01/2025&vela_dateto=31/12/2025', narrow, true],
  ['options_one_category', 'one_category', '?vela_query=garden&vela_cat[]=1', {}, true],
  ['filters', 'advanced', '?vela_query=garden&vela_cat[]=0&season=1&price=9&vela_datefrom=01/01/2020&vela_dateto=31/12/2026'],
  ['filters_dark', 'advanced', '?vela_query=garden&vela_cat[]=0&vela_cat[]=1&colours[]=0', dark],
  ['filters_phone', 'one_category', '?vela_query=garden&vela_cat[]=1&gardener=Ida', phone],
  ['filters_phone_dark', 'advanced', '?vela_query=garden&vela_cat[]=0&season=1', { ...phone, ...dark }],
  ['date_wrong', 'advanced', '?vela_query=garden&vela_datefrom=soon&vela_dateto=31/12/2026'],
  ['date_wrong_phone_dark', 'advanced', '?vela_query=garden&vela_datefrom=soon', { ...phone, ...dark }],
  ['corrections', 'advanced', '?vela_query=roze&vela_cat[]=2&vela_and=1'],
  ['nothing_found', 'bare', '?vela_query=volcano'],
  ['no_question', 'bare', '?vela_query='],
  ['no_question_phone_dark', 'bare', '?vela_query=', { ...phone, ...dark }],
  ['beyond_last', 'advanced', '?vela_query=garden&vela_page=7'],
  ['beyond_last_phone_dark', 'advanced', '?vela_query=garden&vela_page=7', { ...phone, ...dark }],
  ['too_far', 'advanced', '?vela_query=garden&vela_page=500'],
  ['long_words', 'advanced', `?vela_query=${'extraordinarily'.repeat(12)}`, narrow],
  ['error', 'broken', '?vela_query=garden'],
  ['right_to_left', 'right_to_left', '?vela_query=garden+rose', {}, true],
  ['right_to_left_narrow_dark', 'right_to_left', '?vela_query=rose', { ...narrow, ...dark }],
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

for (const [name, index, query, options, unfolded] of STATES) {
  test(name.replaceAll('_', ' '), async () => {
    const page = await openPage(browser, options);
    await page.goto(servers[index].search + query);
    if (unfolded) await unfold(page);
    await shot(page, name);
    await assertFits(page);
    // The check is a script itself; without scripts the same elements come.
    if (options?.javaScriptEnabled !== false) await assertAccessible(page);
    await closePage(page);
    // A message in front of everything stands before the page begins; the page itself is whole.
    const { body } = await get(servers[index].search + query);
    if (name === 'error') assert.match(body, /^Error: [^<]*<!DOCTYPE html>/);
    await assertValidHtml(body.slice(body.indexOf('<!DOCTYPE')));
  });
}

test('on paper: what was found, with its addresses, and nothing to press', async () => {
  const page = await openPage(browser, dark);
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

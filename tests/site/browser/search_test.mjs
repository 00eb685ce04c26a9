// Searching as a visitor does: typing, results, pages, sorting, filters, corrections.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { closePage, follow, launch, openPage, unfold } from './support/browser.mjs';
import { makeGarden } from './support/garden.mjs';
import { serve } from './support/server.mjs';

let browser, server, bare, page;
before(async () => {
  bare = await serve(makeGarden('search_bare', { settings: { UseCats: 0, UseMetaFields: 0 } }));
  server = await serve(makeGarden('search'));
  browser = await launch();
});
after(async () => {
  await browser?.close();
  await server?.stop();
  await bare?.stop();
});

async function visit(query = '', options) {
  page = await openPage(browser, options);
  await page.goto(server.search + query);
}
const titles = () => page.locator('.result_title a').allInnerTexts();
const text = (selector) => page.locator(selector).first().innerText();
const search = () => follow(page, () => page.locator('.vela_bar .vela_button').click());
const click = (locator) => follow(page, () => locator.click());

test('typing words and pressing Enter brings the results', async () => {
  await visit();
  assert.equal(await page.title(), 'Search');
  await page.locator('#vela_searchbox').fill('orchard');
  await follow(page, () => page.keyboard.press('Enter'));
  // The description of the course names it too, but descriptions are not searched.
  assert.deepEqual(await titles(), ['The old orchard']);
  assert.match(await text('.searchheading'), /^Search results for: orchard in all categories/);
  assert.match(await text('.summary'), /1 result found\./);
  assert.equal(await page.title(), 'Search orchard');
  assert.equal(await page.locator('#vela_searchbox').inputValue(), 'orchard');
  await closePage(page);
});

test('the words found are marked in titles, descriptions and passages', async () => {
  await visit('?vela_query=rose+garden');
  const first = page.locator('.result_block').first();
  assert.deepEqual(await first.locator('.result_title .highlight').allInnerTexts(), ['Rose', 'garden']);
  assert.ok((await first.locator('.context .highlight').allInnerTexts()).includes('rose'));
  await closePage(page);
});

test('26 results are three pages, and the links go through them', async () => {
  await visit('?vela_query=garden');
  assert.match(await text('.summary'), /26 results found\./);
  assert.match(await text('.result_pagescount'), /3 pages of results\./);
  assert.equal((await titles()).length, 10);
  await click(page.locator('.result_pages a', { hasText: 'Next' }));
  assert.equal(new URL(page.url()).searchParams.get('vela_page'), '2');
  assert.match(await text('.result_title'), /^11\./);
  await click(page.locator('.result_pages a', { hasText: '3' }));
  assert.equal((await titles()).length, 6);
  assert.equal(await page.locator('.result_pages a', { hasText: 'Next' }).count(), 0);
  await click(page.locator('.result_pages a', { hasText: 'Previous' }));
  assert.match(await text('.result_title'), /^11\./);
  await closePage(page);
});

test('sorting by date and back', async () => {
  await visit('?vela_query=garden');
  await click(page.locator('.sorting a'));
  assert.deepEqual((await titles()).slice(0, 3),
    ['Opening hours and tickets', 'Course: pruning apple trees', 'Rose garden']);
  await click(page.locator('.sorting a', { hasText: 'newest' }));
  assert.equal((await titles())[0], 'Basil');  // of 10 January 2022, the oldest
  await click(page.locator('.sorting a', { hasText: 'relevance' }));
  assert.equal((await titles())[0], 'Rose garden');
  await closePage(page);
});

test('options stay folded away until asked for, and keep what was chosen', async () => {
  await visit('?vela_query=garden');
  assert.equal(await page.locator('#vela_match_all').isVisible(), false);
  await unfold(page);
  await page.locator('#vela_match_all').check();
  await page.locator('#vela_per_page').selectOption('50');
  await page.locator('#vela_searchbox').fill('garden apple');
  await click(page.locator('.vela_panel .vela_button'));
  assert.match(page.url(), /vela_and=1/);
  assert.deepEqual((await titles()).sort(), ['Course: pruning apple trees', 'The old orchard']);
  await unfold(page);
  assert.equal(await page.locator('#vela_match_all').isChecked(), true);
  assert.equal(await page.locator('#vela_per_page').inputValue(), '50');
  await closePage(page);
});

test('a dot at the options tells that something is chosen in them', async () => {
  const dot = () => page.locator('.vela_options summary')
    .evaluate((summary) => getComputedStyle(summary, '::after').content !== 'none');
  await visit();
  for (const [query, expected] of [['', false], ['&vela_cat[]=-1&season=-1&year=', false], ['&vela_and=1', true],
    ['&vela_cat[]=1', true], ['&season=2', true], ['&gardener=ida', true],
    ['&vela_datefrom=01/01/2025&vela_dateto=31/12/2025', true]]) {
    await page.goto(`${server.search}?vela_query=garden${query}`);
    assert.equal(await dot(), expected, query);
  }
  await closePage(page);
});

test('ticking a category takes the tick from "all", and back', async () => {
  await visit('?vela_query=garden');
  await unfold(page);
  await page.getByLabel('Courses').check();
  assert.equal(await page.getByLabel('All', { exact: true }).first().isChecked(), false);
  await page.getByLabel('Courses').uncheck();
  assert.equal(await page.getByLabel('All', { exact: true }).first().isChecked(), true);
  await page.getByLabel('Visits').check();
  await page.getByLabel('Courses').check();
  await search();
  assert.match(page.url(), /vela_cat/);
  assert.match(await text('.searchheading'), /in the category "Visits", "Courses"/);
  assert.match(await text('.summary'), /5 results found\./);  // four visits, one course
  await closePage(page);
});

test('the count of a category is a way to its results', async () => {
  await visit('?vela_query=garden');
  assert.deepEqual(await page.locator('.cat_summary li').allInnerTexts(), ['Plants (23)', 'Visits (4)', 'Courses (1)']);
  await click(page.locator('.cat_summary a', { hasText: 'Courses' }));
  assert.deepEqual(await titles(), ['Course: pruning apple trees']);
  await closePage(page);
});

test('own fields filter: a list, several values, money, text', async () => {
  await visit('?vela_query=garden');
  await unfold(page);
  await page.getByLabel('Season:', { exact: true }).selectOption({ label: 'Winter' });
  await search();
  assert.match(page.url(), /season=3/);
  assert.deepEqual(await titles(), ['Course: pruning apple trees']);
  await unfold(page);
  await page.getByLabel('Season:', { exact: true }).selectOption({ label: 'All' });
  await page.getByLabel('Colours:', { exact: true }).selectOption([{ label: 'Red' }, { label: 'Blue' }]);
  await search();
  assert.match(page.url(), /season=-1/);
  assert.deepEqual((await titles()).sort(),
    ['Rose garden', 'The glasshouse, its lilies & its palms', 'The old orchard']);
  await closePage(page);

  await visit('?vela_query=garden&price=10');  // at most
  assert.deepEqual((await titles()).sort(), ['Opening hours and tickets', 'The glasshouse, its lilies & its palms']);
  await closePage(page);

  await visit('?vela_query=&gardener=holm');  // nothing but a field
  assert.deepEqual((await titles()).sort(), ['Course: pruning apple trees', 'The old orchard']);
  await closePage(page);
});

test('a misspelt word leads to the right one', async () => {
  await visit('?vela_query=roze');
  assert.match(await text('.suggestion'), /^Did you mean rose or rosemary\?/);
  await click(page.locator('.suggestion a').first());
  assert.deepEqual(await titles(), ['Rose garden']);
  await closePage(page);
});

test('recommended pages stand above the results, each once', async () => {
  await visit('?vela_query=tickets+apple');
  assert.deepEqual(await page.locator('.recommend_title').allInnerTexts(),
    ['Opening hours and tickets', 'The old orchard']);
  await closePage(page);
});

test('a picture can be pressed, but is no stop of the keyboard', async () => {
  await visit('?vela_query=rose');
  await page.locator('.result_title a').first().focus();
  await page.keyboard.press('Shift+Tab');
  assert.equal(await page.evaluate(() => document.activeElement.closest('.result_image')), null);
  const picture = page.locator('img.result_image').first();
  assert.equal(await picture.isVisible(), true);
  assert.ok(await picture.evaluate((image) => image.complete && image.naturalWidth > 0));
  await Promise.all([
    page.waitForRequest((request) => request.url().endsWith('/roses.html')),
    picture.click(),
  ]);
  await page.context().close();  // the page itself is not there
});

test('no question, no page that far: a message inside the page', async () => {
  await visit('?vela_query=');
  assert.equal(await page.locator('.results').count(), 1);  // with own fields an empty question is one
  await closePage(page);
  await visit('?vela_query=garden&vela_page=500');
  assert.match(await text('main'), /That page lies beyond the last result that a search shows/);
  await click(page.getByRole('link', { name: 'To the first page' }));
  assert.equal((await titles()).length, 10);
  await closePage(page);
});

test('without words the question for some stands at the box', async () => {
  page = await openPage(browser);
  await page.goto(`${bare.search}?vela_query=`);
  const box = page.locator('#vela_searchbox');
  assert.equal(await page.locator('.vela_bar + .summary').innerText(), 'Please enter one or more words to search for.');
  assert.equal(await box.getAttribute('aria-describedby'), await page.locator('.vela_bar + .summary').getAttribute('id'));
  await closePage(page);
});

test('a page that the search does not have says so and leads back', async () => {
  await visit('?vela_query=garden&season=1&vela_page=9');
  assert.match(await text('.vela_beyond'), /^There are no results on this page\. To the first page$/);
  assert.equal(await page.locator('.result_pages').count(), 0);
  await click(page.locator('.vela_beyond a'));
  assert.equal(new URL(page.url()).search, '?vela_query=garden&season=1');
  assert.ok((await titles()).length > 0);
  await closePage(page);
  await visit('?vela_query=volcano&vela_page=9');  // it has none at all
  assert.equal(await page.locator('.vela_beyond').count(), 0);
  await closePage(page);
});

test('the page that is shown is marked between the nearest numbers', async () => {
  await visit('?vela_query=garden&vela_per_page=2&vela_page=7');
  const row = () => page.getByRole('navigation', { name: 'Result pages' });
  assert.deepEqual(await row().locator(':is(a, [aria-current]):visible').allInnerTexts(),
    ['\u2039 Previous', '4', '5', '6', '7', '8', '9', '10', 'Next \u203a']);
  assert.equal(await row().locator('[aria-current=page]').innerText(), '7');
  assert.equal(await row().locator('a[rel=next]').getAttribute('href'),
    await row().locator('a', { hasText: /^8$/ }).getAttribute('href'));
  await click(row().locator('a', { hasText: /^10$/ }));
  assert.equal(await row().locator('[aria-current=page]').innerText(), '10');
  await closePage(page);
  await visit('?vela_query=garden');  // the first number stands in the text before the links
  assert.deepEqual(await row().locator(':is(a, [aria-current])').allInnerTexts(), ['1', '2', '3', 'Next \u203a']);
  await closePage(page);
  await visit('?vela_query=garden&vela_page=3');
  assert.deepEqual(await row().locator(':is(a, [aria-current])').allInnerTexts(), ['\u2039 Previous', '1', '2', '3']);
  await closePage(page);
});

test('on a phone the page numbers take one line', async () => {
  for (const width of [320, 360]) {
    await visit('?vela_query=garden&vela_per_page=2&vela_page=7', { viewport: { width, height: 700 } });
    const row = page.locator('.result_pages');
    const tops = await row.locator(':is(a, [aria-current]):visible')
      .evaluateAll((items) => items.map((item) => item.getBoundingClientRect().top));
    assert.equal(new Set(tops).size, 1, `${width}: ${tops}`);
    assert.ok(tops.length >= 5);
    assert.equal(await page.getByRole('link', { name: 'Previous' }).isVisible(), true);
    await closePage(page);
  }
});

test('another order begins with its first page', async () => {
  await visit('?vela_query=garden&vela_page=3');
  await click(page.locator('.sorting a'));
  assert.equal(new URL(page.url()).searchParams.get('vela_page'), null);
  assert.match(await text('.result_title'), /^1\./);
  await closePage(page);
});

test('a filter that holds is a chip beside the results, and its cross takes it away', async () => {
  const chips = () => page.locator('.vela_chosen .vela_on').allInnerTexts();
  await visit('?vela_query=garden&vela_page=2&vela_and=0&season=1&colours%5B%5D=0&colours%5B%5D=1&year=x&gardener=Ben');
  assert.deepEqual(await chips(), ['Season: Summer \xd7', 'Colours: Red \xd7', 'Colours: White \xd7', 'Gardener: Ben \xd7']);
  assert.equal(await page.locator('.vela_options').getAttribute('open'), '');
  await click(page.getByRole('link', { name: 'Colours: White \u2013 Remove' }));
  assert.equal(new URL(page.url()).search, '?vela_query=garden&vela_and=0&season=1&colours%5B%5D=0&year=x&gardener=Ben');
  assert.deepEqual(await titles(), ['Rose garden']);
  await click(page.locator('.vela_on a', { hasText: 'Season' }));
  assert.deepEqual(await chips(), ['Colours: Red \xd7', 'Gardener: Ben \xd7']);
  await closePage(page);

  await visit('?vela_query=garden&vela_datefrom=01/01/2025&vela_dateto=31/12/2025&vela_sort=1');
  assert.deepEqual(await chips(), ['From: 01/01/2025 To: 31/12/2025 \xd7']);
  await click(page.locator('.vela_on a'));
  assert.equal(new URL(page.url()).search, '?vela_query=garden&vela_sort=1');
  assert.deepEqual(await chips(), []);
  assert.equal(await page.locator('.vela_options').getAttribute('open'), null);
  await closePage(page);

  // The form would push the results out of sight.
  await visit('?vela_query=garden&season=1', { viewport: { width: 360, height: 700 } });
  assert.equal(await page.locator('.vela_options').getAttribute('open'), null);
  assert.equal(await page.locator('.vela_on').isVisible(), true);
  await closePage(page);
});

test('the categories stay when one is chosen', async () => {
  const row = () => page.locator('.cat_summary li').allInnerTexts();
  await visit('?vela_query=garden');
  await click(page.locator('.cat_summary a', { hasText: 'Visits' }));
  assert.deepEqual(await row(), ['Plants', 'Visits \xd7', 'Courses']);
  await click(page.locator('.cat_summary a', { hasText: 'Courses' }));
  assert.deepEqual(await titles(), ['Course: pruning apple trees']);
  assert.deepEqual(await row(), ['Plants', 'Visits', 'Courses \xd7']);
  await click(page.locator('.vela_on a'));
  assert.deepEqual(await row(), ['Plants (23)', 'Visits (4)', 'Courses (1)']);
  await closePage(page);

  await visit('?vela_query=garden&vela_cat%5B%5D=1&vela_cat[]=2');  // of two, with their counts
  assert.deepEqual(await row(), ['Plants', 'Visits \xd7 (4)', 'Courses \xd7 (1)']);
  await click(page.locator('.vela_on a', { hasText: 'Visits' }));
  assert.equal(new URL(page.url()).search, '?vela_query=garden&vela_cat[]=2');
  await closePage(page);
});

test('the address keeps the bytes of another character set', async () => {
  await visit('?vela_query=caf%E9&season=1');
  assert.equal(await page.locator('.vela_on a').getAttribute('href'), '?vela_query=caf%E9');
  await closePage(page);
});

test('what was asked is never markup', async () => {
  const hostile = '"><script>window.wasRun++</script><svg onload><img src>';
  await visit(`?vela_query=${encodeURIComponent(hostile)}`);
  assert.equal(await page.evaluate(() => window.wasRun), undefined);
  assert.equal(await page.locator('main :is(img, svg, script), form :is(img, svg, script)').count(), 0);
  assert.equal(await page.locator('#vela_searchbox').inputValue(), hostile);
  await closePage(page);
});

test('the first paint waits for the page and its style sheet alone', async () => {
  const requests = [];
  page = await openPage(browser);
  page.on('request', (request) => requests.push([request.resourceType(), new URL(request.url()).pathname]));
  await page.goto(`${server.search}?vela_query=basil`, { waitUntil: 'load' });
  assert.deepEqual(requests.filter(([type]) => type !== 'image'),
    [['document', '/search/search.cgi'], ['stylesheet', '/search/vela_search.css'], ['script', '/search/vela_search.js']]);
  const blocking = await page.evaluate(() => performance.getEntriesByType('resource')
    .filter((entry) => entry.renderBlockingStatus === 'blocking').map((entry) => new URL(entry.name).pathname));
  assert.deepEqual(blocking, ['/search/vela_search.css']);
  await closePage(page);
});

test('everything works without scripts', async () => {
  const plain = { javaScriptEnabled: false };
  await visit('', plain);
  await page.locator('#vela_searchbox').fill('garden');
  await unfold(page);
  await page.locator('label[for=vela_cat-1]').click();
  await page.locator('label[for=vela_cat1]').click();
  await page.locator('#vela_datefrom').fill('01/01/2025');
  await page.locator('#vela_dateto').fill('31/12/2026');
  await search();
  assert.match(page.url(), /vela_datefrom/);
  assert.deepEqual((await titles()).sort(),
    ['Opening hours and tickets', 'Rose garden', 'The glasshouse, its lilies & its palms']);
  await click(page.locator('.sorting a'));
  assert.equal((await titles())[0], 'Opening hours and tickets');
  await closePage(page);
});

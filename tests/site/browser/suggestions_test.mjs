// The suggestions below the search box.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { assertAccessible, closePage, launch, openPage, shot, typeQuickly } from './support/browser.mjs';
import { makeGarden } from './support/garden.mjs';
import { get, serve } from './support/server.mjs';

let browser, server, page, box;
before(async () => {
  server = await serve(makeGarden('suggestions'));
  browser = await launch();
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

const isAsking = (request) => request.url().includes('vela_ac=1');
const shown = () => page.locator('[role=option]').allInnerTexts();
const open = () => page.waitForSelector('.vela_ac_list:not([hidden])');
const closed = () => page.waitForSelector('.vela_ac_list[hidden]', { state: 'attached' });
const active = () => page.evaluate(() => {
  const id = document.activeElement.getAttribute('aria-activedescendant');
  return id ? document.getElementById(id).textContent : '';
});

async function visit(options) {
  page = await openPage(browser, options);
  await page.clock.install();
  await page.goto(server.search);
  box = page.locator('#vela_searchbox');
}
// A page of the site around that form, whose box has the id "own".
async function visitForm(form, { charset = 'utf-8', lang = 'en' } = {}) {
  page = await openPage(browser);
  await page.clock.install();
  await page.route(/own\.html/, (route) => route.fulfill({
    contentType: `text/html; charset=${charset}`,
    body: `<!DOCTYPE html><html lang="${lang}"><title>Own</title>` +
      '<link rel="stylesheet" href="/search/vela_autocomplete.css">' +
      `${form}<script src="/search/vela_autocomplete.js" data-box="own"></script>`,
  }));
  await page.goto(`${server.origin}/own.html`);
  box = page.locator('#own');
}
const keys = (text) => typeQuickly(page, box, text);
async function type(text) {
  await keys(text);
  await open();
}

test('what begins with the typed text is offered, at most eight', async () => {
  await visit();
  await type('gard');
  assert.deepEqual(await shown(), ['garden', 'garden hours', 'Garden plan', 'garden shop', 'garden tickets', 'garden tour',
    'garden tools', 'garden year']);
  await shot(page, 'suggestions');
  await assertAccessible(page);
  await closePage(page);
});

test('of several words, what goes on from all of them stands first', async () => {
  await visit();
  await type('rose gard');  // the program answers for each word
  assert.deepEqual((await shown()).slice(0, 2), ['rose garden', 'garden']);
  assert.ok((await shown()).length === 8);
  await closePage(page);
});

test('the keys of a combobox', async () => {
  await visit();
  await type('gl');
  assert.deepEqual(await shown(), ['glasshouse']);
  await box.fill('');
  await closed();
  await type('app');
  assert.deepEqual(await shown(), ['apple trees', 'Apple pie recipe']);
  assert.equal(await box.getAttribute('aria-expanded'), 'true');
  assert.equal(await page.locator('[role=status]').innerText(), 'Suggestions: 2');
  assert.equal(await active(), '');
  for (const [key, expected] of [['ArrowDown', 'apple trees'], ['ArrowDown', 'Apple pie recipe'], ['ArrowDown', ''],
    ['ArrowUp', 'Apple pie recipe'], ['Home', 'apple trees'], ['End', 'Apple pie recipe'], ['ArrowUp', 'apple trees']]) {
    await page.keyboard.press(key);
    assert.equal(await active(), expected, key);
    assert.equal(await page.locator('[aria-selected=true]').count(), expected ? 1 : 0);
  }
  assert.equal(await box.inputValue(), 'app');  // until one is taken
  await page.keyboard.press('Escape');
  await closed();
  assert.equal(await box.inputValue(), 'app');
  assert.equal(await box.getAttribute('aria-expanded'), 'false');
  await page.keyboard.press('ArrowDown');
  await open();
  await closePage(page);
});

test('Enter takes the marked suggestion and searches for it', async () => {
  await visit();
  await type('glas');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('Enter');
  await page.waitForURL(/vela_query=glasshouse/);
  assert.match(await page.locator('.result_title').first().innerText(), /glasshouse/);
  await closePage(page);
});

test('Enter without a marked suggestion searches for what was typed', async () => {
  await visit();
  await type('glas');
  await page.keyboard.press('Enter');
  await page.waitForURL(/vela_query=glas&/);
  await closePage(page);
});

test('typing on after a suggestion was marked searches for what was typed', async () => {
  await visit();
  await type('glas');
  await page.keyboard.press('ArrowDown');
  assert.equal(await active(), 'glasshouse');
  await page.keyboard.press('x');
  assert.equal(await active(), '');
  assert.equal(await page.locator('[aria-selected=true]').count(), 0);
  await page.keyboard.press('Enter');
  await page.waitForURL(/vela_query=glasx&/);
  await closePage(page);
});

test('Tab takes the marked suggestion into the box and goes on', async () => {
  await visit();
  await type('glas');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('Tab');
  await closed();
  assert.equal(await box.inputValue(), 'glasshouse');
  assert.equal(await page.evaluate(() => document.activeElement.className), 'vela_button');
  assert.equal(page.url(), server.search);
  await closePage(page);
});

test('a suggestion can be pressed, with a mouse and with a finger', async () => {
  await visit();
  await type('glas');
  await page.locator('[role=option]').click();
  await page.waitForURL(/vela_query=glasshouse/);
  await closePage(page);

  await visit({ hasTouch: true, isMobile: true, viewport: { width: 360, height: 640 } });
  await type('glas');
  const size = await page.locator('[role=option]').boundingBox();
  assert.ok(size.height >= 44, `${size.height} pixels high`);
  await page.locator('[role=option]').tap();
  await page.waitForURL(/vela_query=glasshouse/);
  await closePage(page);
});

test('the page can hand over a suggestion itself', async () => {
  await visit();
  await type('glas');
  await page.evaluate(() => VelaAutoComplete_UseSuggestion('rose garden'));
  await page.waitForURL(/vela_query=rose\+garden/);
  await closePage(page);
});

test('the list stays under its box when the window changes', async () => {
  await visit();
  await type('gl');
  await page.setViewportSize({ width: 500, height: 700 });
  await page.waitForFunction(() => {
    const [box, list] = ['#vela_searchbox', '.vela_ac_list'].map((s) => document.querySelector(s).getBoundingClientRect());
    return Math.abs(box.left - list.left) < 1 && Math.abs(box.width - list.width) < 1 && list.top >= box.bottom;
  });
  await closePage(page);
});

test('leaving the box closes the list', async () => {
  await visit();
  await type('gl');
  await page.locator('h1').click({ position: { x: 1, y: 1 } });
  await closed();
  await closePage(page);
});

test('the server is asked after a pause, once for the same text', async () => {
  await visit();
  const asked = [];
  page.on('request', (request) => { if (isAsking(request)) asked.push(new URL(request.url()).searchParams.get('vela_query')); });
  await type('garden');  // six keys without a pause between them
  assert.deepEqual(asked, ['garden']);
  await box.press('Backspace');
  await page.waitForFunction(() => document.querySelectorAll('[role=option]').length === 8 &&
    document.querySelector('[role=option]').textContent === 'garden');
  await box.press('n');
  await page.waitForFunction(() => document.querySelector('[role=option]').textContent === 'garden hours');
  assert.deepEqual(asked, ['garden', 'garde']);
  await closePage(page);
});

test('an overtaken request is given up', async () => {
  await visit();
  let release;
  const held = new Promise((resolve) => { release = resolve; });
  await page.route(/vela_query=gl$/, async (route) => { await held; await route.continue().catch(() => {}); });
  const given = page.waitForEvent('requestfailed', isAsking);
  const first = page.waitForRequest(isAsking);
  await keys('gl');
  await first;
  await box.fill('app');
  assert.match((await given).failure().errorText, /ABORTED/);
  release();
  await open();
  assert.deepEqual(await shown(), ['apple trees', 'Apple pie recipe']);
  await closePage(page);
});

test('a late answer does not take away the mark', async () => {
  await visit();
  await type('gl');
  let release;
  const held = new Promise((resolve) => { release = resolve; });
  await page.route(/vela_query=gla$/, async (route) => { await held; await route.continue().catch(() => {}); });
  const given = page.waitForEvent('requestfailed', isAsking);
  const asked = page.waitForRequest(/vela_query=gla$/);
  await page.keyboard.press('a');
  await asked;
  await page.keyboard.press('ArrowDown');
  await given;  // nobody waits for it any longer
  release();
  assert.equal(await active(), 'glasshouse');
  await page.keyboard.press('Enter');
  await page.waitForURL(/vela_query=glasshouse&/);
  await closePage(page);
});

test('a page that is no answer, such as one to log in, gives no list', async () => {
  await visit();
  await type('gl');
  await page.route(/vela_query=gla$/, (route) => route.fulfill({
    contentType: 'text/html',
    body: '<!DOCTYPE html><title>Log in</title><a href="/glance">Glance</a> <a class="button" href="/gladly">Gladly</a>',
  }));
  await page.keyboard.press('a');
  await closed();
  assert.equal(await page.locator('[role=status]').innerText(), '');
  await closePage(page);
});

test('errors are silent, and the next question is asked again', async () => {
  await visit();
  let answer = { status: 500, body: '<a class="vela_ac_item">no</a>' };
  await page.route(/vela_ac=1/, (route) => answer ? route.fulfill(answer) : route.continue());
  const failed = page.waitForResponse(isAsking);
  await keys('gl');
  assert.equal((await failed).status(), 500);
  await closed();
  answer = { status: 200, contentType: 'text/html', body: 'Can not find the index file.<br />' };
  const empty = page.waitForResponse(isAsking);
  await box.fill('gla');
  await empty;
  await closed();
  answer = null;
  await box.fill('gl');
  await open();
  assert.deepEqual(await shown(), ['glasshouse']);
  // The browser itself writes a line for the 500.
  page.troubles = page.troubles.filter((trouble) => !trouble.includes('500'));
  await closePage(page);
});

test('markup in a suggestion stays text', async () => {
  const answer = await get(`${server.search}?vela_ac=1&vela_query=evil`);
  assert.ok(answer.body.includes('onerror='), 'the index holds the markup');
  await visit();
  await type('evi');
  for (const item of await shown()) assert.match(item, /^evil/);
  assert.equal((await shown()).length, 3);
  assert.deepEqual(await page.evaluate(() =>
    [...document.querySelectorAll('.vela_ac_list *')].map((element) => element.localName)
      .filter((name) => name !== 'li' && name !== 'b')), []);
  await page.keyboard.press('ArrowDown');
  assert.equal(await page.evaluate(() => window.wasRun), undefined);
  await closePage(page);
});

test('any page of the site can have them', async () => {
  page = await openPage(browser);
  await page.clock.install();
  await page.goto(server.origin);
  box = page.locator('#site_search');
  await type('glas');
  assert.deepEqual(await shown(), ['glasshouse']);
  await assertAccessible(page);
  await shot(page, 'suggestions_on_a_page_of_the_site');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('Enter');
  await page.waitForURL(/search\.cgi\?vela_query=glasshouse/);
  await closePage(page);
});

test('text is sent in the character set of the page', async () => {
  // A page in a single-byte encoding: "é" is one byte there.
  await visitForm('<form action="/search/search.cgi"><label>Mot <input id="own" name="vela_query"></label></form>',
    { charset: 'iso-8859-1', lang: 'fr' });
  const asked = page.waitForRequest(isAsking);
  await keys('ét&a+');
  assert.match((await asked).url(), /vela_query=%E9t%26a%2B$/);
  await closePage(page);
});

test('the list is under its box in a table, and in what is moved or scrolled', async () => {
  const input = '<input id="own" name="vela_query" aria-label="Word">';
  for (const [around, behind] of [
    ['<table style="margin: 90px"><tr><td>Word<td style="padding: 20px">', '</table>'],
    ['<div style="position: relative; margin: 70px; border: 9px solid">', '</div>'],
    ['<div style="transform: translate(60px, 50px)"><table><tr><td>', '</table></div>'],
    ['<div style="position: relative; height: 300px; overflow: auto"><p style="height: 400px"></p>',
      '<p style="height: 400px"></p></div>'],
  ]) {
    await visitForm(`<form action="/search/search.cgi">${around}${input}${behind}</form>`);
    await type('glas');
    const [field, list] = [await box.boundingBox(), await page.locator('.vela_ac_list').boundingBox()];
    const gap = list.y - field.y - field.height;
    assert.ok(Math.abs(list.x - field.x) < 1 && Math.abs(list.width - field.width) < 1 && gap >= 0 && gap < 8,
      `${around}: ${JSON.stringify([field, list])}`);
    await closePage(page);
  }
});

test('a box inside its label keeps its name', async () => {
  await visitForm('<form action="/search/search.cgi"><label>Word <input id="own" name="vela_query"></label></form>');
  await type('glas');
  assert.equal(await page.getByRole('combobox', { name: 'Word', exact: true }).count(), 1);
  assert.equal(await page.locator('label *').count(), 1);
  await page.locator('[role=option]').click();
  await page.waitForURL(/vela_query=glasshouse/);
  await closePage(page);
});

test('a form may have a field named "action"', async () => {
  await visitForm('<form action="/search/search.cgi?x=1"><input type="hidden" name="action" value="find">' +
    '<input id="own" name="vela_query" aria-label="Word"></form>');
  const asked = page.waitForRequest(isAsking);
  await type('glas');
  assert.equal((await asked).url(), `${server.search}?vela_ac=1&vela_query=glas`);
  assert.deepEqual(await shown(), ['glasshouse']);
  await closePage(page);
});

// The calendar of the date range. Today is Wednesday, 18 March 2026.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { assertAccessible, closePage, launch, openPage, shot, unfold } from './support/browser.mjs';
import { screenshots } from './support/environment.mjs';
import { makeGarden } from './support/garden.mjs';
import { serve } from './support/server.mjs';

const servers = {};
let browser, page;
before(async () => {
  servers.dmy = await serve(makeGarden('dmy'));
  servers.mdy = await serve(makeGarden('mdy', { settings: { DateRangeFormat: 1 } }));
  for (const [name, open] of [['german', 'lang="de"'], ['arabic', 'lang="ar-EG" dir="rtl"']]) {
    servers[name] = await serve(makeGarden(name, { template: (text) => text.replace('lang="en"', open) }));
  }
  browser = await launch();
});
after(async () => {
  await browser?.close();
  for (const server of Object.values(servers)) await server.stop();
});

async function visit(query = '', server = servers.dmy, options) {
  page = await openPage(browser, options);
  await page.clock.setFixedTime(new Date(2026, 2, 18, 12));
  await page.goto(`${server.search}?vela_query=garden${query}`);
  await unfold(page);
}
async function open(field) {
  await page.locator(`#${field} + input[type=button]`).click();
  await page.waitForSelector('dialog.vela_dp[open]');
}
const closed = () => page.waitForSelector('dialog.vela_dp', { state: 'detached' });
const focused = () => page.evaluate(() => document.activeElement.getAttribute('aria-label'));
const title = () => page.locator('.vela_dp_title').innerText();
const value = (field) => page.locator(`#${field}`).inputValue();
const day = (label) => page.locator(`.vela_dp td[aria-label="${label}"]`);

test('it opens on today, and the keys of a date grid move', async () => {
  await visit();
  await open('vela_dateto');
  assert.equal(await title(), 'March 2026');
  assert.equal(await focused(), 'Wednesday, March 18, 2026');
  assert.deepEqual(await page.locator('.vela_dp th').allInnerTexts(), ['Mon', 'Tue', 'Wed', 'Thu', 'Fri', 'Sat', 'Sun']);
  for (const [key, expected] of [
    ['ArrowRight', 'Thursday, March 19, 2026'], ['ArrowDown', 'Thursday, March 26, 2026'],
    ['Home', 'Monday, March 23, 2026'], ['End', 'Sunday, March 29, 2026'], ['ArrowDown', 'Sunday, April 5, 2026'],
    ['ArrowLeft', 'Saturday, April 4, 2026'], ['PageUp', 'Wednesday, March 4, 2026'],
    ['ArrowUp', 'Wednesday, February 25, 2026'], ['PageDown', 'Wednesday, March 25, 2026'],
    ['Shift+PageUp', 'Tuesday, March 25, 2025'], ['Shift+PageDown', 'Wednesday, March 25, 2026'],
  ]) {
    await page.keyboard.press(key);
    assert.equal(await focused(), expected, key);
  }
  assert.equal(await page.locator('.vela_dp td[tabindex="0"]').count(), 1);
  await closePage(page);
});

test('a month without the day shows its last', async () => {
  await visit('&vela_datefrom=31/01/2024');
  await open('vela_datefrom');
  assert.equal(await focused(), 'Wednesday, January 31, 2024');
  await page.keyboard.press('PageDown');
  assert.equal(await focused(), 'Thursday, February 29, 2024');
  await closePage(page);
});

test('Enter chooses, closes and gives the focus back', async () => {
  await visit();
  const button = page.locator('#vela_datefrom + input[type=button]');
  await button.focus();
  await page.keyboard.press('Enter');
  await page.waitForSelector('dialog.vela_dp[open]');
  await page.keyboard.press('ArrowLeft');
  await page.keyboard.press('Enter');
  await closed();
  assert.equal(await value('vela_datefrom'), '17/03/2026');
  assert.ok(await button.evaluate((element) => element === document.activeElement));
  // A range with one end would filter nothing.
  assert.equal(await value('vela_dateto'), '18/03/2026');
  await closePage(page);
});

test('Escape, the closing button and a press beside it choose nothing', async () => {
  await visit();
  for (const leave of [() => page.keyboard.press('Escape'), () => page.getByRole('button', { name: 'Close' }).click(),
    () => page.mouse.click(3, 3)]) {
    await open('vela_datefrom');
    await page.keyboard.press('ArrowRight');
    await leave();
    await closed();
    assert.equal(await value('vela_datefrom'), '');
    assert.equal(await page.evaluate(() => document.activeElement.type), 'button');
  }
  await closePage(page);
});

test('the other end of the range is the limit', async () => {
  await visit('&vela_datefrom=10/03/2026&vela_dateto=20/03/2026');
  await open('vela_dateto');
  assert.equal(await day('Friday, March 20, 2026').getAttribute('aria-selected'), 'true');
  assert.equal(await day('Monday, March 9, 2026').getAttribute('aria-disabled'), 'true');
  assert.equal(await day('Tuesday, March 10, 2026').getAttribute('aria-disabled'), null);
  await day('Monday, March 9, 2026').click({ force: true });
  assert.equal(await value('vela_dateto'), '20/03/2026');
  await page.keyboard.press('PageUp');
  assert.equal(await focused(), 'Tuesday, March 10, 2026');  // no farther back
  await page.keyboard.press('Escape');
  await closed();
  await open('vela_datefrom');
  await page.keyboard.press('PageDown');
  assert.equal(await focused(), 'Friday, March 20, 2026');
  await closePage(page);
});

test('with the mouse: months, years, today', async () => {
  await visit();
  await open('vela_dateto');
  await page.getByRole('button', { name: 'last year' }).click();
  assert.equal(await title(), 'March 2025');
  await page.getByRole('button', { name: 'next month' }).click();
  assert.equal(await title(), 'April 2025');
  await page.getByRole('button', { name: 'next year' }).click();
  await page.getByRole('button', { name: 'last month' }).click();
  await page.getByRole('button', { name: 'last month' }).click();
  assert.equal(await title(), 'February 2026');
  await page.getByRole('button', { name: 'today' }).click();
  assert.equal(await title(), 'March 2026');
  await day('Tuesday, March 31, 2026').click();
  await closed();
  assert.equal(await value('vela_dateto'), '31/03/2026');
  assert.equal(await value('vela_datefrom'), '01/01/1970');
  await closePage(page);
});

test('an end long ago is no earlier than the beginning filled in for it', async () => {
  await visit();
  await page.locator('#vela_dateto').fill('05/03/1969');
  await open('vela_dateto');
  assert.equal(await focused(), 'Wednesday, March 5, 1969');
  await page.keyboard.press('Enter');
  await closed();
  assert.equal(await value('vela_dateto'), '05/03/1969');
  assert.equal(await value('vela_datefrom'), '05/03/1969');
  await closePage(page);
});

test('the chosen range filters', async () => {
  await visit();
  await open('vela_dateto');
  await page.keyboard.press('Enter');
  await closed();
  await page.locator('#vela_datefrom').fill('01/01/2026');
  await page.locator('.vela_panel .vela_button').click();
  await page.waitForURL(/vela_datefrom=01%2F01%2F2026&vela_dateto=18%2F03%2F2026/);
  assert.deepEqual((await page.locator('.result_title a').allInnerTexts()).sort(),
    ['Course: pruning apple trees', 'Opening hours and tickets']);
  await closePage(page);
});

test('what is typed is read in the order of the site, and written so', async () => {
  await visit('&vela_datefrom=02/03/2026', servers.mdy);
  await open('vela_datefrom');
  assert.equal(await focused(), 'Tuesday, February 3, 2026');
  assert.deepEqual((await page.locator('.vela_dp th').allInnerTexts())[0], 'Sun');
  await page.keyboard.press('PageDown');
  await page.keyboard.press('Enter');
  await closed();
  assert.equal(await value('vela_datefrom'), '03/03/2026');
  await page.locator('#vela_datefrom').fill('13/13/2026');  // no date
  await open('vela_datefrom');
  assert.equal(await focused(), 'Wednesday, March 18, 2026');
  await closePage(page);
});

test('it speaks the language of the page', async () => {
  await visit('', servers.german);
  await open('vela_datefrom');
  assert.equal(await title(), 'März 2026');
  assert.equal(await focused(), 'Mittwoch, 18. März 2026');
  assert.deepEqual(await page.locator('.vela_dp th').allInnerTexts(), ['Mo', 'Di', 'Mi', 'Do', 'Fr', 'Sa', 'So']);
  await page.getByRole('button', { name: 'nächsten Monat' }).click();
  assert.equal(await title(), 'April 2026');
  await page.getByRole('button', { name: 'Schließen' }).click();
  await closed();
  await closePage(page);
});

test('from right to left, the arrow keys follow the eye', async () => {
  await visit('', servers.arabic);
  await open('vela_datefrom');
  const current = () => page.evaluate(() => [...document.activeElement.parentNode.children].indexOf(document.activeElement));
  assert.equal(await current(), 4);  // the week begins on Saturday
  await page.keyboard.press('ArrowLeft');
  assert.equal(await current(), 5);
  await page.keyboard.press('Enter');
  await closed();
  assert.equal(await value('vela_datefrom'), '19/03/2026');  // digits that the program reads
  await closePage(page);
});

test('it is accessible and fits, also on a small screen', async () => {
  await visit('&vela_datefrom=02/03/2026');
  await open('vela_dateto');
  await shot(page, 'date_picker');
  await assertAccessible(page);
  await closePage(page);
  await visit('', servers.dmy, { viewport: { width: 320, height: 568 }, colorScheme: 'dark' });
  await open('vela_dateto');
  const box = await page.locator('dialog.vela_dp').boundingBox();
  assert.ok(box.x >= 0 && box.x + box.width <= 320 && box.y >= 0 && box.y + box.height <= 568, JSON.stringify(box));
  await page.screenshot({ path: `${screenshots}/date_picker_narrow_dark.png` });
  await assertAccessible(page);
  await closePage(page);
});

test('what is no date is told at its field, and is not sent', async () => {
  await visit('&vela_datefrom=soon');
  assert.equal(await page.locator('.vela_options').getAttribute('open'), '');
  assert.equal(await page.locator('#vela_datefrom_wrong').innerText(), 'This is no date. Example: 31/12/2026');
  assert.equal(await page.locator('#vela_datefrom').getAttribute('aria-describedby'), 'vela_datefrom_wrong');
  await shot(page, 'date_wrong');
  await assertAccessible(page);
  await page.locator('#vela_datefrom').fill('01/01/2025');
  await page.locator('#vela_dateto').fill('30/02/2026');
  const before = page.url();
  await page.locator('.vela_panel .vela_button').click();
  assert.equal(page.url(), before);
  assert.equal(await page.locator('#vela_datefrom_wrong').count(), 0);
  assert.equal(await page.locator('#vela_dateto_wrong').count(), 1);
  assert.equal(await page.evaluate(() => document.activeElement.id), 'vela_dateto');
  await closePage(page);
  await visit('&vela_dateto=13/13/2026', servers.mdy);
  assert.match(await page.locator('#vela_dateto_wrong').innerText(), /12\/31\/2026$/);
  await closePage(page);
});

test('one end of the range is enough', async () => {
  for (const [field, typed, from, to] of [['vela_datefrom', '01/01/2026', '01%2F01%2F2026', '18%2F03%2F2026'],
    ['vela_dateto', '31/12/2022', '01%2F01%2F1970', '31%2F12%2F2022']]) {
    await visit();
    await unfold(page);
    await page.locator(`#${field}`).fill(typed);
    await page.locator('.vela_panel .vela_button').click();
    await page.waitForURL((address) => address.search.includes(`vela_datefrom=${from}&vela_dateto=${to}`));
    await closePage(page);
  }
});

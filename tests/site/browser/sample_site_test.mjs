// The sample site as the demo serves it: indexed by vela_index with its own configuration.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { copyFileSync, mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { assertAccessible, assertFits, closePage, follow, inEveryLook, launch, openPage, shot } from './support/browser.mjs';
import { bin, project, work } from './support/environment.mjs';
import { get, serve } from './support/server.mjs';
import { assertValidHtml } from './support/valid_html.mjs';

const example = path.join(project, 'examples/library');
const servers = {};
let browser, page;

// Indexes the sample site with a template of its own or a built-in one, and serves it. `change` makes
// the configuration another.
async function library(name, template, change = (text) => text) {
  const folder = path.join(work, name);
  rmSync(folder, { recursive: true, force: true });
  mkdirSync(folder, { recursive: true });
  for (const file of ['vela_index.toml', 'recommended.txt', 'search_template.html']) {
    copyFileSync(path.join(example, file), path.join(folder, file));
  }
  const configuration = path.join(folder, 'vela_index.toml');
  writeFileSync(configuration, change(readFileSync(configuration, 'utf8')));
  const index = path.join(folder, 'index');
  execFileSync(path.join(bin, 'vela_index'), ['--config', configuration, '--quiet',
    '--site', path.join(example, 'site'), '--out', index, ...(template ? ['--template', template] : [])]);
  copyFileSync(path.join(bin, 'vela_search'), path.join(index, 'search.cgi'));
  return serve(index, { site: path.join(example, 'site') });
}

before(async () => {
  servers.own = await library('own_template');
  servers.default = await library('default_template', 'default');
  servers.minimal = await library('minimal_template', 'minimal');
  servers.embed = await library('embed_template', 'embed');
  servers.styled = await library('styled', undefined,
    (text) => text.replace('[search]', '[search]\nstyle_sheet = "vela_results.xsl"'));
  browser = await launch();
});
after(async () => {
  await browser?.close();
  for (const server of Object.values(servers)) await server.stop();
});

test('what the pages link is delivered, the index is not', async () => {
  const status = async (name) => (await get(`${servers.default.origin}/search/${name}`)).status;
  for (const name of ['vela_search.css', 'vela_autocomplete.js', 'vela_autocomplete.css', 'vela_datepicker.js',
    'vela_datepicker.css', 'vela_results.xsl', 'vela_opensearch.xml']) assert.equal(await status(name), 200, name);
  for (const name of ['settings.vdat', 'vela_dictionary.vdat', 'search_template.html']) assert.equal(await status(name), 403, name);
});

const STATES = [
  ['start', ''],
  ['results', '?vela_query=summer+reading', '.result_title', /^1\.\s+Summer reading/i],
  ['events', '?vela_query=&price=5&audience=4', '.vela_on', /^Price up to: 5/],
  ['pages', '?vela_query=library&vela_page=2', '.vela_current', /^2$/],
  ['filters', '?vela_query=library&vela_cat[]=0', '.vela_on', /^News/],
  ['section', '?vela_query=bronze+otter', '.result_section', /^\u203a The camera at the fountain$/],
  ['recommended', '?vela_query=opening+times', '.recommend_title', /Opening hours/],
  ['recommended_elsewhere', '?vela_query=audiobooks', '.recommend_infoline', /^ebooks\.example\.net\/$/],
  ['misspelt', '?vela_query=poetri', '.suggestion', /poetry/],
  ['nothing', '?vela_query=volcano', '.summary', /No results found/],
  ['no_question', '?vela_query=', '.summary', /No results found/],
  ['date_wrong', '?vela_query=library&vela_datefrom=soon&vela_dateto=31/12/2025', '.vela_dp_wrong', /^This is no date/],
  ['beyond_last', '?vela_query=library&vela_page=60', '.vela_beyond', /^There are no results on this page/],
];
for (const template of ['own', 'default']) {
  for (const [name, query, selector, text] of STATES) {
    test(`${template} template: ${name.replaceAll('_', ' ')}`, async () => {
      await inEveryLook(browser, `library_${template}_${name}`, (seen) => seen.goto(servers[template].search + query),
        async (seen) => {
          if (selector) assert.match(await seen.locator(selector).first().innerText(), text);
          await assertFits(seen);
          await assertAccessible(seen);
        });
      await assertValidHtml((await get(servers[template].search + query)).body);
    });
  }
}

for (const template of ['minimal', 'embed']) {
  test(`${template} template: a section is named beside the title`, async () => {
    await inEveryLook(browser, `library_${template}_section`,
      (seen) => seen.goto(`${servers[template].search}?vela_query=bronze+otter`),
      async (seen) => {
        assert.equal(await seen.locator('.result_section').innerText(), '\u203a The camera at the fountain');
        await assertFits(seen);
        if (template === 'minimal') await assertAccessible(seen);  // the other is a part of a page
      });
  });
}

test('the library: filters are chips, and the row of pages is short', async () => {
  page = await openPage(browser);
  await page.goto(`${servers.own.search}?vela_query=library&vela_page=2`);
  assert.equal(await page.locator('.vela_current').innerText(), '2');
  await page.goto(`${servers.own.search}?vela_query=library&vela_cat[]=0`);
  assert.equal(await page.locator('.vela_on').count(), 1);
  const line = await page.locator('.infoline').first().innerText();
  assert.match(line, / \d\d \w{3} \d{4} \xb7 \d+k \xb7 \/[\w./-]+$/);
  await page.locator('#vela_cat-1').check();  // "all" takes the others out
  assert.equal(await page.locator('#vela_cat0').isChecked(), false);
  await closePage(page);
});

test('typing in the library: a suggestion leads to its page', async () => {
  page = await openPage(browser);
  await page.goto(servers.own.search);
  await page.locator('#vela_searchbox').pressSequentially('summ');
  await page.waitForSelector('[role=option]');
  await page.keyboard.press('ArrowDown');
  await shot(page, 'library_own_suggestions');
  await follow(page, () => page.keyboard.press('Enter'));
  assert.ok(await page.locator('.result_title a').count() > 0);
  await closePage(page);
});

test('the XML answer of the library brings no warning of the browser', async () => {
  assert.doesNotMatch((await get(`${servers.own.search}?vela_xml=1&vela_query=library`)).body, /xml-stylesheet/);
  page = await openPage(browser);
  await page.goto(`${servers.own.search}?vela_xml=1&vela_query=library`);
  assert.equal(await page.locator('xslt-warning-banner').count(), 0);
  await closePage(page);
});

test('the XML answer of the library can be read with a style sheet', async () => {
  const show = async (seen) => {
    await seen.goto(`${servers.styled.search}?vela_xml=1&vela_query=library`);
    await seen.waitForSelector('.result_title a');
    await seen.evaluate(() => document.querySelector('xslt-warning-banner')?.remove());
  };
  await inEveryLook(browser, 'library_xml', show, async (seen) => {
    await assertFits(seen);
    await assertAccessible(seen, ['xslt-warning-banner']);
  });
});

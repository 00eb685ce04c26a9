// Checks a page against the HTML standard. What the search program's fixed texts force is listed
// with its reason; anything else fails.
import assert from 'node:assert/strict';
import { require } from './environment.mjs';

const { HtmlValidate } = require('html-validate');
const checker = new HtmlValidate({ root: true, extends: ['html-validate:standard'] });

const FORCED = {
  'no-deprecated-attr: Attribute "language" is deprecated on <script> element':
    'the script elements that the program writes carry language="javascript"',
  'element-permitted-content: <ul> element is not permitted as content under <span>':
    'the list of category boxes stands in <span class="vela_categories">',
  'void-content: End tag for <input> must be omitted': 'the box for all categories is closed with </input>',
  "close-order: Stray end tag '</span>'": 'the list of category boxes closes its span twice',
  'deprecated: <center> is deprecated: use CSS instead': 'the line "Search powered by" stands in <center>',
  'element-permitted-content: <center> element is not permitted as content under <section>': 'the same',
};

export async function assertValidHtml(text) {
  const report = await checker.validateString(text);
  const messages = (report.results[0]?.messages ?? [])
    .map((message) => ({ text: `${message.ruleId}: ${message.message}`, line: message.line }))
    .filter((message) => !(message.text in FORCED));
  assert.deepEqual(messages, []);
}

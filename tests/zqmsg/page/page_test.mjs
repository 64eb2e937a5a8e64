// A message as a page, in a browser: node page_test.mjs PATH_OF_ZQMSG
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { after, afterEach, before, beforeEach, test } from 'node:test';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const zqmsg = process.argv[2];
const folder = mkdtempSync(join(tmpdir(), 'zqmsg-page-'));
const input = join(dirname(fileURLToPath(import.meta.url)), 'message.xml');

let browser;
let page;
let complaints;

const make = (name, ...options) => makeOf(input, name, ...options);
const makeOf = (source, name, ...options) => {
  const path = join(folder, name);
  execFileSync(zqmsg, ['convert', source, '--to', 'page', '-o', path, ...options]);
  return pathToFileURL(path).href;
};

// A fresh page; whatever the browser has to complain about is kept.
const openPage = async (url, options = {}) => {
  page = await browser.newPage(options);
  complaints = [];
  page.on('console', (message) => complaints.push(`${message.type()}: ${message.text()}`));
  page.on('pageerror', (error) => complaints.push(String(error)));
  page.on('request', (request) => { if (request.url() !== url) complaints.push(`asks for ${request.url()}`); });
  await page.goto(url);
};

const section = (title) => page.locator('.s', { has: page.locator(`:scope > button > .t:has-text("${title}")`) }).last();
const button = (title) => section(title).locator(':scope > button');
const row = (name) => page.locator('.f', { has: page.locator(`.n:text-is("${name}")`) });

let masked;
before(async () => {
  masked = make('masked.html');
  browser = await chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-background-networking'],
  });
});
after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true });
});
beforeEach(() => openPage(masked));
afterEach(() => page.close());

const quiet = () => assert.deepEqual(complaints, []);

test('the header tells class, tag id and sizes', async () => {
  const header = await page.locator('header').innerText();
  assert.match(header, /JobManager_JobListResp/);
  assert.match(header, /Tag id\s*0x15349C4B/);
  assert.match(header, /XML\s*[\d,]+ bytes/);
  assert.match(header, /Binary\s*[\d,]+ bytes/);
  assert.equal(await page.title(), 'JobManager_JobListResp');
  quiet();
});

test('a click opens a section and another one closes it', async () => {
  const limit = row('limit');
  assert.equal(await limit.isVisible(), false);
  await button('page').click();
  assert.equal(await limit.isVisible(), true);
  assert.equal(await button('page').getAttribute('aria-expanded'), 'true');
  await button('page').click();
  assert.equal(await limit.isVisible(), false);
  assert.equal(await button('page').getAttribute('aria-expanded'), 'false');
  quiet();
});

test('showdiv opens a block by its id', async () => {
  await page.evaluate(() => globalThis.showdiv(document.querySelector('#message .b').id));
  assert.equal(await row('limit').isVisible(), true);
});

test('everything expands and collapses', async () => {
  await page.click('#expand');
  assert.equal(await page.locator('.b[hidden]').count(), 0);
  assert.equal(await row('jobId').nth(1).isVisible(), true);
  await page.click('#collapse');
  assert.equal(await page.locator('.b:not([hidden])').count(), 0);
  quiet();
});

test('the search leaves the fields with the text, and opens the way to them', async () => {
  await button('page').click();
  await page.fill('#search', 'FAILED');
  await page.waitForFunction(() => document.getElementById('found').value !== '');
  assert.equal(await page.locator('.f:visible').count(), 1);
  assert.match(await page.locator('.f:visible').innerText(), /status[\s\S]*FAILED/);
  assert.match(await page.locator('#found').innerText(), /^1 of \d+ fields$/);
  assert.equal(await section('page').isVisible(), false);
  quiet();
});

test('clearing the search brings back what was open before', async () => {
  await button('page').click();
  await page.fill('#search', 'jobId');
  await page.waitForFunction(() => document.getElementById('found').value !== '');
  await page.focus('#search');
  await page.keyboard.press('Escape');
  assert.equal(await page.inputValue('#search'), '');
  assert.equal(await row('limit').isVisible(), true);
  assert.equal(await row('jobId').first().isVisible(), false);
  quiet();
});

test('a search without a hit says so', async () => {
  await page.fill('#search', 'no such text');
  await page.locator('#nothing').waitFor({ state: 'visible' });
  assert.equal(await page.locator('.f:visible').count(), 0);
  assert.match(await page.locator('#found').innerText(), /^0 of/);
});

test('a name of a section leaves all that is in it', async () => {
  await page.fill('#search', 'page');
  await page.waitForFunction(() => document.getElementById('found').value !== '');
  assert.equal(await row('limit').isVisible(), true);
  assert.equal(await row('total').isVisible(), true);
});

test('that there are no fields is no field', async () => {
  await page.close();
  const source = join(folder, 'empty.xml');
  writeFileSync(source, '<JobManager_JobListResp generated="1"><page/></JobManager_JobListResp>');
  await openPage(makeOf(source, 'empty.html'));
  for (const [text, count] of [['page', 0], ['no field is set', 0], ['generated', 1]]) {
    await page.fill('#search', text);
    await page.waitForFunction((wanted) => document.getElementById('found').value === wanted, `${count} of 1 fields`,
                               { timeout: 5000 });
  }
  quiet();
});

test('the keyboard alone reaches everything', async () => {
  await page.keyboard.press('/');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'search');
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'expand');
  await page.keyboard.press('Tab');
  await page.keyboard.press('Tab');
  assert.match(await page.evaluate(() => document.activeElement.textContent), /^page/);
  await page.keyboard.press('Enter');
  assert.equal(await row('limit').isVisible(), true);
  quiet();
});

test('mark-up in a value stays text', async () => {
  await page.click('#expand');
  const values = await row('subclientName').locator('.v').allInnerTexts();
  assert.deepEqual(values, [
    `<img src=x onerror="document.title='run'">`,
    `</span><script>document.title='run'</script>`,
  ]);
  assert.equal(await page.locator('img').count(), 0);
  assert.equal(await page.locator('script').count(), 1);
  assert.equal(await page.title(), 'JobManager_JobListResp');
  quiet();
});

test('the policy runs no script but that of the page, and loads nothing', async () => {
  await page.evaluate(() => {
    const host = document.body.appendChild(document.createElement('div'));
    host.innerHTML = `<img src="https://example.invalid/x.png" onerror="document.title='run'">`;
    document.body.appendChild(document.createElement('script')).textContent = `document.title = 'run'`;
  });
  await page.waitForTimeout(100);
  assert.equal(await page.title(), 'JobManager_JobListResp');
  assert.ok(complaints.some((complaint) => complaint.includes('Content Security Policy')));
});

test('secrets are masked, and shown when asked for', async () => {
  await page.click('#expand');
  assert.equal(await row('impersonationPassword').locator('.v').innerText(), '*******');
  assert.equal(await row('description').locator('.v').innerText(), '########');
  assert.ok(!(await page.content()).includes('hunter2'));
  await page.close();
  await openPage(make('shown.html', '--show-secrets'));
  await page.click('#expand');
  assert.match(await row('impersonationPassword').locator('.v').innerText(), /hunter2/);
  assert.match(await row('description').locator('.v').innerText(), /of the board/);
  quiet();
});

test('it fits a phone and follows a dark screen', async () => {
  await page.close();
  await openPage(masked, { viewport: { width: 360, height: 640 }, colorScheme: 'dark' });
  await page.click('#expand');
  const width = await page.evaluate(() => document.documentElement.scrollWidth);
  assert.ok(width <= 360, `needs ${width} pixels`);
  const paper = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  assert.equal(paper, 'rgb(13, 17, 23)');
  quiet();
});

test('without script everything can be read', async () => {
  await page.close();
  await openPage(masked, { javaScriptEnabled: false });
  assert.equal(await row('jobId').first().isVisible(), true);
  assert.equal(await page.locator('#search').isVisible(), false);
});

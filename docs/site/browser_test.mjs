// The site in a browser: node browser_test.mjs FOLDER_OF_HTML
import assert from 'node:assert/strict';
import { readdirSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { pathToFileURL } from 'node:url';
import { chromium } from '../../tests/zqmsg/page/node_modules/playwright-core/index.mjs';

const folder = process.argv[2];
const url = (name) => pathToFileURL(join(folder, name)).href;
const all = readdirSync(folder).filter((name) => name.endsWith('.html')).sort();
const guide = all.filter((name) => name.startsWith('guide_'));
const some = [...new Set(['index.html', ...guide, 'annotated.html', 'files.html', 'classzqxml_1_1XNMessageBase.html',
  ...all.filter((_, i) => i % 10 === 0)])];
const desktop = {viewport: {width: 1280, height: 900}};
const phone = {viewport: {width: 360, height: 740}, hasTouch: true};

let browser;
before(async () => {
  browser = await chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-background-networking'],
  });
});
after(() => browser?.close());

// Runs `look` on a page, and expects the browser to have nothing to complain about.
const onPage = async (name, options, look) => {
  const page = await browser.newPage(options);
  const complaints = [];
  page.on('console', (message) => complaints.push(message.text()));
  page.on('pageerror', (error) => complaints.push(String(error)));
  page.on('requestfailed', (request) => complaints.push(`${request.url()} fails`));
  page.on('request', (request) => { if (!request.url().startsWith('file:')) complaints.push(request.url()); });
  await page.goto(url(name));
  await look(page);
  assert.deepEqual(complaints, [], name);
  await page.close();
};

test('there are pages of the guide', () => assert.ok(guide.length > 10));

for (const [screen, options] of [['desktop', desktop], ['phone', phone]]) {
  test(`no page scrolls sideways on a ${screen}`, async () => {
    await onPage('index.html', options, async (page) => {
      for (const name of some) {
        await page.goto(url(name));
        const [width, room] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
        assert.ok(width <= room, `${name}: ${width} > ${room}`);
      }
    });
  });
}

test('light and dark differ, and text stands out in both', async () => {
  const colors = {};
  for (const colorScheme of ['light', 'dark']) {
    await onPage('guide_logging.html', {...desktop, colorScheme}, async (page) => {
      colors[colorScheme] = await page.evaluate(() => ['backgroundColor', 'color'].map((property) => {
        const [red, green, blue] = getComputedStyle(document.body)[property].match(/\d+/g).map(Number);
        return (red * 299 + green * 587 + blue * 114) / 1000;
      }));
    });
  }
  assert.ok(colors.light[0] - colors.light[1] > 180, colors.light.join());
  assert.ok(colors.dark[1] - colors.dark[0] > 180, colors.dark.join());
});

test('the search finds a name, a section and a log line, and leads there', async () => {
  for (const [query, kind, place] of [['getDebugLevel', 'function', /classzqxml_1_1EvDebug\.html#/],
    ['what a reader does', 'in The binary form of a message', /guide_wire_format\.html#/],
    ['key file cannot be read', 'log line', /guide_log_texts\.html#line-/]]) {
    await onPage('index.html', desktop, async (page) => {
      await page.keyboard.press('/');
      await page.keyboard.type(query);
      const first = page.locator('#found a').first();
      await first.waitFor();
      assert.equal(await first.locator('.kind').innerText(), kind);
      await page.keyboard.press('Enter');
      await page.waitForURL(place);
    });
  }
});

test('a search without a hit says so, and Escape closes it', async () => {
  await onPage('index.html', desktop, async (page) => {
    await page.fill('#search', 'no such words at all');
    await page.getByText('Nothing has this text.').waitFor();
    await page.focus('#search');
    await page.keyboard.press('Escape');
    assert.equal(await page.locator('#found').isVisible(), false);
  });
});

test('the menu of a phone opens with a touch and shows where one is', async () => {
  await onPage('guide_limits.html', phone, async (page) => {
    const here = page.locator('nav a[aria-current="page"]');
    assert.equal(await here.isVisible(), false);
    await page.locator('#menu').tap();
    assert.equal(await here.isVisible(), true);
    assert.equal(await here.innerText(), 'Limits');
  });
});

test('the pages can be used with the keyboard alone', async () => {
  await onPage('guide_schema.html', desktop, async (page) => {
    await page.keyboard.press('Tab');
    assert.equal(await page.evaluate(() => document.activeElement.className), 'skip');
    await page.keyboard.press('Enter');
    assert.match(page.url(), /#main$/);
  });
});

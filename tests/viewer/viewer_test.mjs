// The page of `velmora view` in Chromium: viewer_test.mjs BUILD_DIRECTORY
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import http from 'node:http';
import {after, before, test} from 'node:test';
import {startBrowser, startView} from './browser.mjs';

const build = process.argv[2];
const complaints = [];
let view, browser, page;

async function open() {
  const opened = await browser.newPage();
  opened.on('pageerror', (error) => complaints.push(error.message));
  opened.on('console', (message) => {
    // Refused values are among the tests.
    if (message.type() === 'error' && !message.text().includes('422')) complaints.push(message.text());
  });
  await opened.goto(view.url);
  await opened.locator('.row').first().waitFor();
  return opened;
}

const card = (port, on = page) => on.getByRole('article').nth(port);
const field = (name, on = page) => on.getByRole('spinbutton', {name});

async function enter(name, value) {
  await field(name).fill(String(value));
  await field(name).press('Enter');
}

/** Waits until a function of the page answers what is wanted. */
async function wait(wanted, read) {
  let found;
  for (const end = Date.now() + 15000; Date.now() < end;) {
    found = await read();
    if (found === wanted) return;
    await new Promise((done) => setTimeout(done, 50));
  }
  assert.equal(found, wanted);
}
const waitForValue = (name, value, on = page) => wait(String(value), () => field(name, on).inputValue());

/** What a port's picture shows: its size and the sum of its pixels. */
const look = (port) => card(port).locator('img').evaluate((image) => {
  const canvas = new OffscreenCanvas(image.naturalWidth || 1, image.naturalHeight || 1);
  const context = canvas.getContext('2d');
  context.drawImage(image, 0, 0);
  const {data, width, height} = context.getImageData(0, 0, canvas.width, canvas.height);
  return {width, height, sum: data.reduce((sum, each, i) => (sum * 31 + each) % 65521, 0)};
});

before(async () => {
  view = await startView(build);
  browser = await startBrowser(build);
  page = await open();
});

after(async () => {
  await browser.close();
  assert.equal(await view.stop(), 0);
});

test('four pictures move', async () => {
  for (const port of [0, 1, 2, 3]) {
    await wait(1024, async () => (await look(port)).width);
    const {sum} = await look(port);
    await wait(true, async () => (await look(port)).sum !== sum);
  }
});

test('width changes the size of the picture', async () => {
  await enter('FG_WIDTH', 512);
  await wait(512, async () => (await look(0)).width);
  await enter('FG_WIDTH', 1600); // More than the buffers were made for.
  await wait(1600, async () => (await look(0)).width);
});

test('a slider and a list change settings, and limits follow', async () => {
  await page.getByRole('slider', {name: 'FG_HEIGHT'}).focus();
  await page.keyboard.press('ArrowRight');
  await waitForValue('FG_HEIGHT', 1025);
  await wait('0 to 64508 pixel, step 1', () => page.locator('[data-name=FG_YOFFSET] small').textContent());
  const list = page.getByRole('combobox', {name: 'FG_TRIGGERSTATE'});
  await list.selectOption({label: 'Active'});
  await wait('Active', () => card(0).locator('dd').nth(1).textContent());
});

test('a refused value shows its reason and returns', async () => {
  await enter('FG_WIDTH', 17);
  const reason = page.locator('[data-name=FG_WIDTH] [role=alert]');
  await wait('refused: -7080, value breaks a step rule: 8 to 8192 pixel, step 4', () => reason.textContent());
  await waitForValue('FG_WIDTH', 1600);
  await enter('FG_WIDTH', 1024);
  await wait('', () => reason.textContent());
});

test('two tabs follow each other', async () => {
  const other = await open();
  await card(2, other).getByRole('radio').check();
  await card(2).getByRole('radio').check();
  await enter('FG_WIDTH', 256);
  await waitForValue('FG_WIDTH', 256, other);
  await card(2, other).getByRole('button', {name: 'Stop,'}).click();
  await wait('■ stopped', () => card(2).locator('.state').textContent());
  await card(2).getByRole('button', {name: 'Start,'}).click();
  await wait('▶ acquiring', () => card(2, other).locator('.state').textContent());
  await other.close();
});

test('save and load', async () => {
  const saved = page.waitForEvent('download');
  await page.getByRole('link', {name: 'Save'}).click();
  const file = await (await saved).path();
  await enter('FG_WIDTH', 640);
  await waitForValue('FG_WIDTH', 640);
  const choose = page.getByLabel('Configuration file to load');
  await choose.setInputFiles({name: 'a.mcf', mimeType: '', buffer: readFileSync(file)});
  await waitForValue('FG_WIDTH', 256);
  const edited = readFileSync(file, 'latin1').replace('FG_WIDTH=256', 'FG_WIDTH=18');
  await choose.setInputFiles({name: 'b.mcf', mimeType: '', buffer: Buffer.from(edited, 'latin1')});
  await page.getByText(/FG_WIDTH@2=18 .*value breaks a step rule/).waitFor();
});

test('a software trigger makes a picture and its events', async () => {
  await card(3).getByRole('radio').check();
  await page.getByRole('combobox', {name: 'FG_AREATRIGGERMODE'}).selectOption({label: 'Software'});
  await page.getByRole('combobox', {name: 'FG_TRIGGERSTATE'}).selectOption({label: 'Active'});
  await card(3).getByRole('button', {name: 'Stop,'}).click();
  await card(3).getByRole('button', {name: 'Start,'}).click();
  await wait('0', () => card(3).locator('dd').nth(3).textContent());
  await card(3).getByRole('button', {name: 'Software trigger'}).click();
  await wait('1', () => card(3).locator('dd').nth(3).textContent());
  await page.getByRole('cell', {name: 'FG_TRIGGER_OUTPUT_CAM3'}).waitFor();
});

test('every control has a name, and nothing complains', async () => {
  const nameless = await page.locator('input, select, button').evaluateAll(
      (all) => all.filter((each) => !(each.ariaLabel || each.textContent || each.labels?.length)).length);
  assert.equal(nameless, 0);
  assert.deepEqual(complaints, []);
});

test('twenty streams for a minute', {timeout: 120000}, async () => {
  const memory = () => Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${view.pid}/status`))[1]);
  const pause = (seconds) => new Promise((done) => setTimeout(done, seconds * 1000));
  const received = Array(20).fill(0);
  const streams = received.map((_, i) => http.get(`${view.url}pictures`, (answer) => {
    answer.on('data', (bytes) => received[i] += bytes.length);
  }).on('error', () => {}));
  await pause(15);
  const early = memory();
  const halfway = [...received];
  await pause(45);
  assert.ok(memory() < 1.1 * early, `${early} kB, then ${memory()} kB`);
  received.forEach((bytes, i) => assert.ok(bytes > halfway[i], `stream ${i} stands still`));
  streams.forEach((stream) => stream.destroy());
});

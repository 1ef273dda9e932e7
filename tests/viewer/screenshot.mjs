// Makes the picture of the page: screenshot.mjs BUILD_DIRECTORY FILE
import {startBrowser, startView} from './browser.mjs';

const [build, file] = process.argv.slice(2);
const view = await startView(
    build, '--port', 'all', '--set', 'FG_TRIGGERSTATE=TS_ACTIVE', 'FG_TRIGGER_FRAMESPERSECOND@2=12',
    'FG_WIDTH@1=640', 'FG_BAYERINIT@3=GreenFollowedByBlue');
const browser = await startBrowser(build);
const page = await browser.newPage({viewport: {width: 1440, height: 1240}});
await page.goto(view.url);
await page.getByRole('spinbutton', {name: 'FG_WIDTH'}).fill('1022');
await page.keyboard.press('Enter');
await page.getByText('refused').waitFor();
await page.waitForTimeout(30000); // Until the plots are full.
await page.evaluate(() => scrollTo(0, 0));
await page.screenshot({path: file});
await browser.close();
process.exit(await view.stop());

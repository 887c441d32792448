// What the user of the page sees and uses: controls by role and name, words where they are shown.
import { until } from './desktop.js';

const role = (kind, name) => `::-p-aria([name="${name}"][role="${kind}"])`;

/** They wait until the control is visible, still and enabled before they act on it. */
export const control = (page, kind, name) => page.locator(role(kind, name));
export const button = (page, name) => control(page, 'button', name);

/** A radio button or a switch: what the user clicks is its label, once the input is in use. */
export async function choose(page, input) {
  await page.waitForSelector(`${input}:enabled`);
  await page.locator(`label:has(${input})`).click();
}

export const isEnabled = (page, name) =>
  page.$$eval(role('button', name), (found) => found.some((element) => element.matches(':enabled')));

export const isVisible = (page, selector) => page.$eval(selector, (element) => element.checkVisibility());

/** Fills a field in as soon as it is in use. */
export const fillIn = (page, name, text) => control(page, 'textbox', name).fill(text);

/** The text of an element that can be seen; undefined for one that cannot. */
export const words = (page, selector) => page.$$eval(selector, ([element]) =>
  element?.checkVisibility() ? element.textContent.trim() : undefined);

/** Waits until the element shows the text, or one that matches the regular expression. */
export async function shows(page, selector, wanted, timeout) {
  let seen;
  const isShown = async () => {
    seen = await words(page, selector);
    return wanted instanceof RegExp ? wanted.test(seen ?? '') : seen === wanted;
  };
  await until(isShown, () => `${selector} to show ${wanted}; it shows ${seen}`, timeout);
}

export const says = (page, text) => shows(page, '#status', text);
export const notice = (page, title) => shows(page, '#notice-title', title);
export const points = async (page) => Number(await words(page, '#gauge-points'));
export const count = (page, selector) => page.$$eval(selector, (found) => found.length);

// A browser on the page of `velmora view`.
import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {createInterface} from 'node:readline';
import {pathToFileURL} from 'node:url';

/** Starts the tool of a build directory; `stop` ends it by Ctrl-C and answers its exit status. */
export async function startView(build, ...options) {
  const tool = spawn(`${build}/bin/velmora`, ['view', '--listen', '127.0.0.1:0', ...options],
                     {stdio: ['ignore', 'pipe', 'inherit']});
  const ended = once(tool, 'exit');
  const [url] = await once(createInterface(tool.stdout), 'line');
  const stop = async () => {
    tool.kill('SIGINT');
    const [status] = await ended;
    return status;
  };
  return {url, pid: tool.pid, stop};
}

/** Chromium, by the module that `install_browser` puts into the build directory. */
export async function startBrowser(build) {
  const module = `${build}/browser/node_modules/playwright-core/index.mjs`;
  const {chromium} = await import(pathToFileURL(module));
  // Its sandbox does not work for root.
  return chromium.launch({executablePath: '/usr/bin/chromium',
                          args: process.getuid() === 0 ? ['--no-sandbox'] : []});
}

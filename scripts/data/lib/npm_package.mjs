// Packages from npm, installed into a temporary folder that goes when the builder ends.
import {execFileSync} from 'node:child_process';
import fs from 'node:fs';
import {createRequire} from 'node:module';
import os from 'node:os';
import path from 'node:path';

/** Installs the packages ("name@version") and gives `require` and the path of a file in one of them. */
export function installPackages(...packages) {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'zenka-data-'));
    process.on('exit', () => fs.rmSync(folder, {recursive: true, force: true}));
    fs.writeFileSync(path.join(folder, 'package.json'), '{"private": true}\n');
    execFileSync('npm', ['install', '--silent', '--no-audit', '--no-fund', '--ignore-scripts', ...packages],
                 {cwd: folder, stdio: ['ignore', 'ignore', 'inherit']});
    const require = createRequire(path.join(folder, 'package.json'));
    return {require, file: (...parts) => path.join(folder, 'node_modules', ...parts)};
}

/** Where a builder writes: data/NAME of this repository, or the path given as its first argument. */
export function outputPath(name) {
    return process.argv[2] ?? path.resolve(import.meta.dirname, '..', '..', '..', 'data', name);
}

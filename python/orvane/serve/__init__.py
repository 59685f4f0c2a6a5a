"""A web page of a rack: orvane serve.

One poller reads for all viewers what is on somebody's screen. Topics hold the newest values, viewers take what has
changed since they last looked; nothing queues. The server is aiohttp's, and closed to whoever has not the printed
address.
"""
